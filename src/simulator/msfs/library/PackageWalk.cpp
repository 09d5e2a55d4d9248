#include "simulator/msfs/library/PackageWalk.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <functional>
#include <vector>

namespace tarvo::simulator::msfs {

namespace {

/// Folders below the root; packages have about eight. On Windows a junction may lead back to where it lies.
constexpr int deepest = 32;

struct Folder
{
    QString path;
    int depth;
};

struct Listing
{
    QStringList files;   ///< named "aircraft.cfg", sorted
    QStringList folders; ///< sorted, the last first, as a stack wants them
};

Listing list(const QString &folder)
{
    Listing listing;
    QDirIterator entries(folder, QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        const QFileInfo entry = entries.nextFileInfo();
        if (!entry.isDir()) {
            if (entries.fileName().compare(QLatin1String("aircraft.cfg"), Qt::CaseInsensitive) == 0)
                listing.files.append(entries.filePath());
        } else if (!entry.isSymLink()) {
            listing.folders.append(entries.filePath());
        }
    }
    std::sort(listing.files.begin(), listing.files.end());
    std::sort(listing.folders.begin(), listing.folders.end(), std::greater<>());
    return listing;
}

} // namespace

void walkAircraftConfigs(const QString &root, const std::atomic<bool> &isStopped,
                         const std::function<void(const QString &path)> &visit)
{
    std::vector<Folder> waiting{{root, 0}};
    while (!waiting.empty() && !isStopped) {
        const Folder folder = waiting.back();
        waiting.pop_back();
        const Listing listing = list(folder.path);
        for (const QString &file : listing.files) {
            if (!isStopped && file.contains(QLatin1String("/SimObjects/")))
                visit(file);
        }
        if (folder.depth == deepest)
            continue;
        for (const QString &child : listing.folders)
            waiting.push_back({child, folder.depth + 1});
    }
}

} // namespace tarvo::simulator::msfs
