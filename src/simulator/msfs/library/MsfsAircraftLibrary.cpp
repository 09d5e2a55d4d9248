#include "simulator/msfs/library/MsfsAircraftLibrary.h"

#include "AppConfig.h"
#include "network/SwiftAircraftIcaoService.h"
#include "simulator/msfs/library/LibraryScan.h"
#include "simulator/msfs/library/ModelMatcher.h"
#include "simulator/msfs/library/ModelSearch.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <atomic>
#include <mutex>
#include <system_error>
#include <utility>

namespace tarvo::simulator::msfs {

namespace {

struct RuntimeKeys
{
    MsfsRuntimeProfile runtime;
    const StringKey &packages;
    const StringKey &community;
    const PathListKey &mappings;
};

constexpr RuntimeKeys runtimeKeys[] = {
    {MsfsRuntimeProfile::Msfs2020, config::msfsPackagesPath2020, config::msfsCommunityPath2020,
     config::msfsCustomMappingPaths2020},
    {MsfsRuntimeProfile::Msfs2024, config::msfsPackagesPath2024, config::msfsCommunityPath2024,
     config::msfsCustomMappingPaths2024},
};

/// Other pilots choose the texts of a query: the cache is emptied before it grows without end.
constexpr qsizetype mostMatches = 4096;

QString userDataBase()
{
    const QString own = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return QDir::cleanPath(own + QStringLiteral("/.."));
}

} // namespace

/// The worker writes the tables until the phase is Ready, and everybody else only reads them then.
struct MsfsAircraftLibrary::Shared
{
    enum class Phase
    {
        NotScanned,
        Scanning,
        ScanningBeforeReload, ///< to be scanned once more
        Ready,
    };

    /// On the worker's thread.
    void run()
    {
        do {
            tables = {};
            tables = scanLibrary(currentPlaces(), watch);
            if (watch.isStopped)
                return;
        } while (!end());
    }

    /// False when there is a reload to be done. One step, so that no reload comes between the look and the change.
    bool end()
    {
        Phase expected = Phase::Scanning;
        if (phase.compare_exchange_strong(expected, Phase::Ready))
            return true;
        phase = Phase::Scanning;
        return false;
    }

    void setPlaces(LibraryPlaces newPlaces)
    {
        const std::lock_guard lock(mutex);
        places = std::move(newPlaces);
    }

    LibraryPlaces currentPlaces()
    {
        const std::lock_guard lock(mutex);
        return places;
    }

    std::atomic<Phase> phase = Phase::NotScanned;
    ScanWatch watch;
    ModelTables tables;

private:
    std::mutex mutex; ///< guards `places`
    LibraryPlaces places;
};

MsfsAircraftLibrary &MsfsAircraftLibrary::instance()
{
    static MsfsAircraftLibrary library(AppConfig::instance(), network::SwiftAircraftIcaoService::instance(),
                                       userDataBase());
    // Not only when statics go: Qt's own would go before.
    static const auto stopsAtQuit =
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, [] { library.stop(); });
    return library;
}

MsfsAircraftLibrary::MsfsAircraftLibrary(const AppConfig &config, const network::SwiftAircraftIcaoService &types,
                                         QString dataBase)
    : m_config(config),
      m_types(types),
      m_dataBase(std::move(dataBase)),
      m_shared(std::make_shared<Shared>()),
      m_worker("aircraft library", 1)
{
}

MsfsAircraftLibrary::~MsfsAircraftLibrary()
{
    stop();
}

void MsfsAircraftLibrary::ensureLoaded()
{
    if (m_shared->phase == Shared::Phase::NotScanned)
        startScan();
}

void MsfsAircraftLibrary::reload()
{
    m_shared->setPlaces(places());
    Shared::Phase expected = Shared::Phase::Scanning;
    if (m_shared->phase.compare_exchange_strong(expected, Shared::Phase::ScanningBeforeReload) ||
        expected == Shared::Phase::ScanningBeforeReload)
        return;
    m_matches.clear();
    startScan();
}

void MsfsAircraftLibrary::startScan()
{
    if (m_shared->watch.isStopped)
        return;
    m_shared->setPlaces(places());
    m_shared->phase = Shared::Phase::Scanning;
    if (m_worker.post([shared = m_shared] { shared->run(); }))
        return;
    m_shared->phase = Shared::Phase::NotScanned;
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again),
                            "thread constructor failed");
}

LibraryPlaces MsfsAircraftLibrary::places() const
{
    LibraryPlaces places{.configured = {}, .dataBase = m_dataBase};
    for (const RuntimeKeys &keys : runtimeKeys) {
        places.configured.append({.runtime = keys.runtime,
                                  .packagesPath = m_config.get(keys.packages),
                                  .communityPath = m_config.get(keys.community),
                                  .mappingPaths = m_config.storedPaths(keys.mappings)});
    }
    return places;
}

bool MsfsAircraftLibrary::isReady() const
{
    return m_shared->phase == Shared::Phase::Ready;
}

qsizetype MsfsAircraftLibrary::modelCount(MsfsRuntimeProfile runtime) const
{
    return isReady() ? m_shared->tables.count(runtime) : 0;
}

int MsfsAircraftLibrary::scannedFiles() const
{
    return m_shared->watch.files;
}

void MsfsAircraftLibrary::stop()
{
    m_shared->watch.isStopped = true;
    m_worker.finish();
}

MsfsModelMatch MsfsAircraftLibrary::match(MsfsRuntimeProfile profile, const QString &typeCode, const QString &airline,
                                          const QString &livery)
{
    ModelQuery query{.profile = profile,
                     .type = typeCode.trimmed().toUpper(),
                     .airline = airline.trimmed().toUpper(),
                     .livery = livery.trimmed().toUpper(),
                     .familyRows = {}};
    if (!isReady()) {
        ensureLoaded();
        return {.runtime = profile,
                .entry = {},
                .normalizedType = query.type,
                .normalizedAirline = query.airline,
                .normalizedLivery = query.livery};
    }
    // With their lengths: other pilots choose these texts, and a "|" of theirs is not to pass for ours.
    const QString key = QStringLiteral("%1|%2|%3|%4|%5|%6")
                            .arg(QString::number(static_cast<int>(profile)), QString::number(query.type.size()),
                                 QString::number(query.airline.size()), query.type, query.airline, query.livery);
    if (const auto known = m_matches.constFind(key); known != m_matches.cend())
        return *known;
    if (m_matches.size() >= mostMatches)
        m_matches.clear();
    resolveType(query);
    return *m_matches.insert(key, findModel(m_shared->tables, query));
}

std::optional<MsfsAircraftEntry> MsfsAircraftLibrary::findPeerHint(MsfsRuntimeProfile profile,
                                                                   const QString &hintTitle) const
{
    return isReady() ? findTitle(m_shared->tables, profile, hintTitle) : std::nullopt;
}

bool MsfsAircraftLibrary::isTypeCompatible(const MsfsAircraftEntry &entry, const QString &typeCode) const
{
    ModelQuery query;
    query.type = typeCode.trimmed().toUpper();
    resolveType(query);
    return isOfType(entry, query);
}

QList<MsfsScoredModel> MsfsAircraftLibrary::searchModels(const QString &query, int limit,
                                                         MsfsRuntimeProfile profile) const
{
    return isReady() ? msfs::searchModels(m_shared->tables, query, limit, profile) : QList<MsfsScoredModel>();
}

void MsfsAircraftLibrary::resolveType(ModelQuery &query) const
{
    if (const QString canonical = m_types.normalize(query.type).canonical; !canonical.isEmpty())
        query.type = canonical;
    query.familyRows = m_types.rowsFor(query.type);
}

} // namespace tarvo::simulator::msfs
