#include "DataFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>

namespace tarvo {

namespace {

QString settingsIn(const QString &folder)
{
    return QDir(folder).filePath(QStringLiteral("config.ini"));
}

QString reasonFor(RootChoice choice, const RootFacts &facts)
{
    if (choice == RootChoice::Beside)
        return facts.ownHasSettings ? QStringLiteral("beside the program, which has settings; those in the user's own "
                                                     "folder are not used")
                                    : QStringLiteral("beside the program");
    if (choice == RootChoice::OwnTakingSettings)
        return QStringLiteral("the user's own, with the settings from beside the program, which can't be written");
    return facts.besideIsWritable ? QStringLiteral("the user's own, which has settings")
                                  : QStringLiteral("the user's own: beside the program nothing can be written");
}

} // namespace

bool isWritableFolder(const QString &folder)
{
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral(".tarvo-XXXXXX")));
    return probe.open();
}

RootChoice chooseRoot(const RootFacts &facts)
{
    if (facts.besideIsWritable && (facts.besideHasSettings || !facts.ownHasSettings))
        return RootChoice::Beside;
    return facts.besideHasSettings && !facts.ownHasSettings ? RootChoice::OwnTakingSettings : RootChoice::Own;
}

DataFolders findDataFolders(const QString &programFolder, const QString &ownFolder)
{
    const RootFacts facts{.besideIsWritable = isWritableFolder(programFolder),
                          .besideHasSettings = QFileInfo::exists(settingsIn(programFolder)),
                          .ownHasSettings = QFileInfo::exists(settingsIn(ownFolder))};
    const RootChoice choice = chooseRoot(facts);
    return {.root = choice == RootChoice::Beside ? programFolder : ownFolder,
            .readOnly = {programFolder,
                         QDir::cleanPath(QDir(programFolder).filePath(QStringLiteral("../share/TarvoClient")))},
            .reason = reasonFor(choice, facts),
            .settingsFrom = choice == RootChoice::OwnTakingSettings ? programFolder : QString()};
}

DataFolders findDataFolders()
{
    // The organisation stays unset, so that the folder has the program's name alone.
    return findDataFolders(QCoreApplication::applicationDirPath(),
                           QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
}

void makeDataFolders(const DataFolders &folders)
{
    QDir().mkpath(folders.root);
    if (!folders.settingsFrom.isEmpty() && QFile::copy(settingsIn(folders.settingsFrom), settingsIn(folders.root)))
        QFile::setPermissions(settingsIn(folders.root),
                              QFile::ReadOwner | QFile::WriteOwner); // not those of the source
}

const DataFolders &dataFolders()
{
    static const DataFolders folders = [] {
        DataFolders found = findDataFolders();
        makeDataFolders(found);
        return found;
    }();
    return folders;
}

} // namespace tarvo
