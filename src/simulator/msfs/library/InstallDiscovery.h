#pragma once

#include "simulator/msfs/simvar/MsfsRuntimeProfile.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace tarvo::simulator::msfs {

/// What discovery starts from: where one simulator keeps its packages. Paths are clean; those that aren't known are
/// empty.
struct MsfsInstallConfig
{
    MsfsRuntimeProfile runtime = MsfsRuntimeProfile::Unknown;
    QString label;
    QString packagesPath;
    QString communityPath;
    QStringList extraMappingPaths; ///< further folders of models, scanned like the others

    bool operator==(const MsfsInstallConfig &) const = default;
};

/// A folder to scan.
struct MsfsPackageRoot
{
    QString label;
    QString path;
    bool isCommunity = false;

    bool operator==(const MsfsPackageRoot &) const = default;
};

/// What the pilot has configured for one simulator, as it stands in the configuration.
struct ConfiguredFolders
{
    MsfsRuntimeProfile runtime = MsfsRuntimeProfile::Unknown;
    QString packagesPath;
    QString communityPath;
    QStringList mappingPaths;
};

/// All that a scan has to know before it begins.
struct LibraryPlaces
{
    QList<ConfiguredFolders> configured; ///< one for each simulator, 2020 first
    QString dataBase;                    ///< holds the simulators' own folders with UserCfg.opt
};

/// The values of the "InstalledPackagesPath" lines of a UserCfg.opt, cleaned; empty ones are left out.
QStringList packagesPathsIn(const QByteArray &userCfg);

/// What the pilot configured, and for a simulator without that what its UserCfg.opt tells. Each once.
QList<MsfsInstallConfig> discoverInstallConfigs(const LibraryPlaces &places);

/// The folders of a config that exist, in the order of the scan. `seen`: the paths of this scan so far; they are left
/// out, and the new ones are added.
QList<MsfsPackageRoot> packageRootsOf(const MsfsInstallConfig &config, QSet<QString> &seen);

} // namespace tarvo::simulator::msfs
