#include "diagnosis/FolderCheck.h"

#include "DataFolders.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

namespace tarvo::diagnosis {

namespace {

constexpr qint64 bytesWanted = 200'000'000; ///< three files of the network log

/// It, or what it will be made in.
QString existing(QString folder)
{
    while (!QFileInfo::exists(folder) && QFileInfo(folder).path() != folder)
        folder = QFileInfo(folder).path();
    return folder;
}

} // namespace

FolderFacts lookAtFolder(const QString &root)
{
    const QString logs = QDir(root).filePath(QStringLiteral("logs"));
    FolderFacts facts{.root = root, .exists = QFileInfo(root).isDir()};
    facts.rootWritable = isWritableFolder(existing(root));
    facts.logsWritable = QFileInfo(logs).exists() ? isWritableFolder(logs) : facts.rootWritable;
    facts.freeBytes = facts.exists ? QStorageInfo(root).bytesAvailable() : -1;
    return facts;
}

Findings judgeFolder(const QString &root, const std::optional<FolderFacts> &facts)
{
    const QString title = Texts::tr("数据文件夹");
    const QString shownRoot = QDir::toNativeSeparators(root);
    const QString rights = Texts::tr("取得这个文件夹的写权限，或把程序移到可写的地方。");
    if (!facts)
        return {{Mark::Bad, title, Texts::tr("%1 没有及时应答").arg(shownRoot), Texts::tr("检查它所在的磁盘。")}};
    if (!facts->exists && facts->rootWritable)
        return {{Mark::Good, title, Texts::tr("%1，第一次启动时建立").arg(shownRoot)}};
    if (!facts->exists)
        return {{Mark::Bad, title, Texts::tr("%1 不存在").arg(shownRoot), rights}};
    if (!facts->rootWritable)
        return {{Mark::Bad, title, Texts::tr("%1 不可写").arg(shownRoot), rights}};
    Findings findings{{Mark::Good, title, Texts::tr("%1，可写").arg(shownRoot)}};
    if (!facts->logsWritable)
        findings << Finding{Mark::Bad, Texts::tr("日志文件夹"), Texts::tr("logs 不可写"), rights};
    const bool isFull = facts->freeBytes >= 0 && facts->freeBytes < bytesWanted;
    const QString left = Texts::tr("剩余 %1 MB").arg(facts->freeBytes / 1'000'000);
    if (facts->freeBytes >= 0)
        findings << Finding{isFull ? Mark::Bad : Mark::Good, Texts::tr("磁盘空间"), left,
                            isFull ? Texts::tr("腾出磁盘空间，否则设置和日志无法保存。") : QString()};
    return findings;
}

} // namespace tarvo::diagnosis
