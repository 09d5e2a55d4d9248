#pragma once

#include "diagnosis/Finding.h"

#include <QStringList>

#include <optional>

namespace tarvo::diagnosis {

struct StoredSettings;

/// Whether config.ini is whole and every value in it is one that the client can use.
Finding judgeSettings(const StoredSettings &settings, const QByteArray &configSecret);

/// The folders of models and of MSFS that the settings name.
QStringList foldersOf(const StoredSettings &settings);
/// Nothing when `folders` is empty. `missing`: those that aren't there; nothing when the disk didn't say in time.
Findings judgeFolders(const QStringList &folders, const std::optional<QStringList> &missing);

} // namespace tarvo::diagnosis
