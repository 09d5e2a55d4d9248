#include "simulator/msfs/library/LibraryScan.h"

#include "simulator/msfs/library/AircraftFiles.h"
#include "simulator/msfs/library/PackageWalk.h"

#include <QDebug>
#include <QSet>

#include <utility>

namespace tarvo::simulator::msfs {

namespace {

/// Where a file lies within its root.
struct PackagePlace
{
    QString package; ///< first part of the path below the root
    QString owner;   ///< the folder that holds "SimObjects": the package, however deep or high the root lies
};

PackagePlace placeOf(const QString &root, const QString &file)
{
    const QString inside = file.mid(root.endsWith(u'/') ? root.size() : root.size() + 1);
    const QString package = inside.section(u'/', 0, 0);
    const qsizetype objects = (u'/' + inside).lastIndexOf(QLatin1String("/SimObjects/"));
    if (objects < 0) // the root lies below it
        return {package, package};
    const QString above = objects == 0 ? root : inside.first(objects - 1);
    return {package, above.section(u'/', -1)};
}

MsfsAircraftEntry entryOf(const AircraftSection &section)
{
    MsfsAircraftEntry entry;
    entry.title = section.value(AircraftKey::Title);
    entry.uiManufacturer = section.value(AircraftKey::UiManufacturer);
    entry.uiType = section.value(AircraftKey::UiType);
    entry.uiVariation = section.value(AircraftKey::UiVariation);
    entry.airline = section.value(AircraftKey::AtcAirline);
    entry.isAirTraffic = section.flag(AircraftKey::IsAirTraffic, false);
    entry.isUserSelectable = section.flag(AircraftKey::IsUserSelectable, entry.isAirTraffic);
    return entry;
}

class LibraryScan
{
public:
    explicit LibraryScan(ScanWatch &watch) : m_watch(watch) {}

    void scan(const MsfsInstallConfig &config)
    {
        for (const MsfsPackageRoot &root : packageRootsOf(config, m_roots))
            scan(root, config.runtime);
    }

    ModelTables tables;

private:
    void scan(const MsfsPackageRoot &root, MsfsRuntimeProfile runtime)
    {
        const qsizetype before = tables.count(runtime);
        walkAircraftConfigs(root.path, m_watch.isStopped, [&](const QString &file) { takeFile(file, root, runtime); });
        if (m_watch.isStopped)
            return;
        qInfo().noquote() << QStringLiteral("Scanned %1 MSFS aircraft variants for %2 from %3")
                                 .arg(QString::number(tables.count(runtime) - before), displayName(runtime), root.path);
    }

    void takeFile(const QString &file, const MsfsPackageRoot &root, MsfsRuntimeProfile runtime)
    {
        ++m_watch.files;
        const AircraftConfig config = m_files.take(file);
        const MsfsAircraftMetadata metadata = m_files.metadataOf(file, config);
        const PackagePlace place = placeOf(root.path, file);
        for (const AircraftSection &section : config.sections) {
            MsfsAircraftEntry entry = entryOf(section);
            if (!section.isVariant() || entry.title.isEmpty() || !isNew(runtime, place, entry.title))
                continue;
            entry.runtime = runtime;
            entry.configPath = file;
            entry.rootLabel = root.label;
            entry.package = place.package;
            entry.metadata = metadata;
            entry.isCommunity = root.isCommunity;
            tables.append(std::move(entry));
        }
    }

    bool isNew(MsfsRuntimeProfile runtime, const PackagePlace &place, const QString &title)
    {
        const qsizetype before = m_known.size();
        m_known.insert(
            QStringLiteral("%1|%2|%3").arg(QString::number(static_cast<int>(runtime)), place.owner, title.toUpper()));
        return m_known.size() > before;
    }

    ScanWatch &m_watch;
    AircraftFiles m_files;
    QSet<QString> m_roots;
    QSet<QString> m_known;
};

} // namespace

ModelTables scanLibrary(const LibraryPlaces &places, ScanWatch &watch)
{
    watch.files = 0;
    const QList<MsfsInstallConfig> configs = discoverInstallConfigs(places);
    if (configs.isEmpty())
        qWarning("No MSFS aircraft library roots were discovered; traffic model matching will be unavailable");
    LibraryScan scan(watch);
    for (const MsfsInstallConfig &config : configs)
        scan.scan(config);
    if (watch.isStopped)
        return {};
    qInfo().noquote() << QStringLiteral("MSFS aircraft library ready: profiles=%1 fs2020=%2 fs2024=%3")
                             .arg(configs.size())
                             .arg(scan.tables.count(MsfsRuntimeProfile::Msfs2020))
                             .arg(scan.tables.count(MsfsRuntimeProfile::Msfs2024));
    return std::move(scan.tables);
}

} // namespace tarvo::simulator::msfs
