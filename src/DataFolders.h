#pragma once

#include <QString>
#include <QStringList>

namespace tarvo {

/// Where the program keeps its data, and where else it finds what it came with.
struct DataFolders
{
    QString root;              ///< settings, logs, what it has learnt
    QStringList readOnly;      ///< beside the program, then where an installation has put it
    QString reason = {};       ///< why it is this root, for the log
    QString settingsFrom = {}; ///< a folder whose config.ini has to come along to the root; empty: none
};

/// What is known of the two folders that can be the data root: beside the program, as a portable copy has it, and the
/// user's own.
struct RootFacts
{
    bool besideIsWritable = false;
    bool besideHasSettings = false; ///< a config.ini of an earlier run
    bool ownHasSettings = false;
};
enum class RootChoice
{
    Beside,
    Own,
    OwnTakingSettings, ///< the settings beside the program can't be changed there and come along
};

RootChoice chooseRoot(const RootFacts &facts);

/// Tried, not asked for: neither rights nor access lists tell of a folder on Windows or of a medium that is locked.
bool isWritableFolder(const QString &folder);

/// Looks at the folders and leaves them as they are.
DataFolders findDataFolders(const QString &programFolder, const QString &ownFolder);
/// Those of this process. Needs the application object.
DataFolders findDataFolders();

/// Makes the root, and brings config.ini there where it has to come along.
void makeDataFolders(const DataFolders &folders);

/// Those of this process, decided and made at the first call. Needs the application object.
const DataFolders &dataFolders();

} // namespace tarvo
