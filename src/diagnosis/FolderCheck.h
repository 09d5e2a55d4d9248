#pragma once

#include "diagnosis/Finding.h"

#include <QtGlobal>

#include <optional>

namespace tarvo::diagnosis {

/// What the disk says of the data folder.
struct FolderFacts
{
    QString root;
    bool exists = false;
    bool rootWritable = false; ///< or can be made
    bool logsWritable = false; ///< or could be made
    qint64 freeBytes = -1;     ///< negative: unknown
};

/// Looks, and leaves nothing behind. May take as long as the disk does.
FolderFacts lookAtFolder(const QString &root);

/// `facts`: nothing when the disk didn't say in time.
Findings judgeFolder(const QString &root, const std::optional<FolderFacts> &facts);

} // namespace tarvo::diagnosis
