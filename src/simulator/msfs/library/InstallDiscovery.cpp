#include "simulator/msfs/library/InstallDiscovery.h"

#include "AppConfig.h"
#include "simulator/msfs/library/ForeignText.h"

#include <QByteArrayView>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace tarvo::simulator::msfs {

namespace {

constexpr qint64 largestUserCfg = 1024 * 1024; // bytes read; the simulator's has some thousand

struct UserCfgPlace
{
    MsfsRuntimeProfile runtime;
    const char *path; ///< below the data base
};

// Deliberate: the last path stands for both, as the edition from the store may have kept its folder.
constexpr UserCfgPlace userCfgPlaces[] = {
    {MsfsRuntimeProfile::Msfs2020, "Microsoft Flight Simulator/UserCfg.opt"},
    {MsfsRuntimeProfile::Msfs2020, "Packages/Microsoft.FlightSimulator_8wekyb3d8bbwe/LocalCache/UserCfg.opt"},
    {MsfsRuntimeProfile::Msfs2020, "Microsoft Flight Simulator 2020/UserCfg.opt"},
    {MsfsRuntimeProfile::Msfs2024, "Microsoft Flight Simulator 2024/UserCfg.opt"},
    {MsfsRuntimeProfile::Msfs2024, "Packages/Microsoft.Limitless_8wekyb3d8bbwe/LocalCache/UserCfg.opt"},
    {MsfsRuntimeProfile::Msfs2024, "Packages/Microsoft.FlightSimulator2024_8wekyb3d8bbwe/LocalCache/UserCfg.opt"},
    {MsfsRuntimeProfile::Msfs2024, "Packages/Microsoft.FlightSimulator_8wekyb3d8bbwe/LocalCache/UserCfg.opt"},
};

constexpr const char *officialFolders[] = {"Official", "Official2020", "Official2024"};

QString identityOf(const MsfsInstallConfig &config)
{
    return QStringLiteral("%1|%2|%3|%4")
        .arg(QString::number(static_cast<int>(config.runtime)), config.packagesPath, config.communityPath,
             config.extraMappingPaths.join(u'|'));
}

/// What follows the first blank of a line, without its quotes.
QString valueOf(QByteArrayView line)
{
    for (qsizetype at = 0; at < line.size(); ++at) {
        if (line[at] == ' ' || line[at] == '\t')
            return textOf(withoutQuotes(line.sliced(at)));
    }
    return {};
}

QStringList cleanForeignPaths(QStringList paths)
{
    for (QString &path : paths)
        path = cleanForeignPath(path);
    return paths;
}

MsfsInstallConfig configuredInstall(const ConfiguredFolders &folders)
{
    return {.runtime = folders.runtime,
            .label = QStringLiteral("config override"),
            .packagesPath = cleanForeignPath(folders.packagesPath),
            .communityPath = cleanForeignPath(folders.communityPath),
            .extraMappingPaths = AppConfig::existingPaths(cleanForeignPaths(folders.mappingPaths))};
}

bool isEmpty(const MsfsInstallConfig &config)
{
    return config.packagesPath.isEmpty() && config.communityPath.isEmpty() && config.extraMappingPaths.isEmpty();
}

QList<MsfsInstallConfig> detectedInstalls(MsfsRuntimeProfile runtime, const QString &dataBase)
{
    QList<MsfsInstallConfig> found;
    for (const UserCfgPlace &place : userCfgPlaces) {
        const QString path = dataBase + u'/' + QLatin1String(place.path);
        QFile file(path);
        if (place.runtime != runtime || !QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
            continue;
        for (const QString &packages : packagesPathsIn(file.read(largestUserCfg)))
            found.append({runtime, QStringLiteral("auto-detected UserCfg.opt"), packages, {}, {}});
    }
    return found;
}

/// Collects the roots that exist and that are new.
class Roots
{
public:
    explicit Roots(QSet<QString> &seen) : m_seen(seen) {}

    void add(const QString &label, const QString &folder, bool isCommunity)
    {
        if (folder.isEmpty())
            return;
        const QString path = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
        if (m_seen.contains(path) || !QFileInfo(path).isDir())
            return;
        m_seen.insert(path);
        found.append({label, path, isCommunity});
    }

    void addOfficial(const QString &packages, const QString &name)
    {
        bool hasShops = false;
        for (const char *shop : {"OneStore", "Steam"}) {
            const QString label = name + u'/' + QLatin1String(shop);
            const QString path = packages + u'/' + label;
            hasShops = hasShops || QFileInfo(path).isDir();
            add(label, path, false);
        }
        if (!hasShops)
            add(name, packages + u'/' + name, false);
    }

    QList<MsfsPackageRoot> found;

private:
    QSet<QString> &m_seen;
};

} // namespace

QStringList packagesPathsIn(const QByteArray &userCfg)
{
    QStringList paths;
    const QList<QByteArray> lines = withAsciiSigns(userCfg).split('\n');
    for (const QByteArray &whole : lines) {
        const QByteArrayView line = QByteArrayView(whole).trimmed();
        if (!line.startsWith("InstalledPackagesPath"))
            continue;
        if (const QString path = cleanForeignPath(valueOf(line)); !path.isEmpty())
            paths.append(path);
    }
    return paths;
}

QList<MsfsInstallConfig> discoverInstallConfigs(const LibraryPlaces &places)
{
    QList<MsfsInstallConfig> configured;
    QList<MsfsInstallConfig> detected;
    for (const ConfiguredFolders &folders : places.configured) {
        const MsfsInstallConfig config = configuredInstall(folders);
        if (isEmpty(config))
            detected += detectedInstalls(folders.runtime, places.dataBase);
        else
            configured.append(config);
    }
    QList<MsfsInstallConfig> all;
    QSet<QString> keys;
    for (const MsfsInstallConfig &config : configured + detected) {
        if (!keys.contains(identityOf(config)))
            all.append(config);
        keys.insert(identityOf(config));
    }
    return all;
}

QList<MsfsPackageRoot> packageRootsOf(const MsfsInstallConfig &config, QSet<QString> &seen)
{
    Roots roots(seen);
    roots.add(QStringLiteral("ConfiguredCommunity"), config.communityPath, true);
    for (const QString &path : config.extraMappingPaths)
        roots.add(QStringLiteral("ImportedLibrary"), path, true);
    const QString &packages = config.packagesPath;
    if (packages.isEmpty())
        return roots.found;
    roots.add(QStringLiteral("Community"), packages + QStringLiteral("/Community"), true);
    roots.add(QStringLiteral("Community2024"), packages + QStringLiteral("/Community2024"), true);
    for (const char *name : officialFolders)
        roots.addOfficial(packages, QLatin1String(name));
    roots.add(QStringLiteral("StreamedPackages"), packages + QStringLiteral("/StreamedPackages"), false);
    return roots.found;
}

} // namespace tarvo::simulator::msfs
