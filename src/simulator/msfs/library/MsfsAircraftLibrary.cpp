#include "simulator/msfs/library/MsfsAircraftLibrary.h"

#include "AppConfig.h"
#include "network/SwiftAircraftIcaoService.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <atomic>
#include <system_error>

namespace tarvo::simulator::msfs {

namespace {

enum class Phase
{
    NotScanned,
    Scanning,
    ScanningBeforeReload, ///< to be scanned once more
    Ready,
};

QString userDataBase()
{
    const QString own = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return QDir::cleanPath(own + QStringLiteral("/.."));
}

} // namespace

struct MsfsAircraftLibrary::Shared
{
    std::atomic<Phase> phase = Phase::NotScanned;
    std::atomic<bool> isStopped = false;
    std::atomic<int> scannedFiles = 0;
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
    Phase expected = Phase::NotScanned;
    if (!m_shared->isStopped && m_shared->phase.compare_exchange_strong(expected, Phase::Scanning))
        startScan();
}

void MsfsAircraftLibrary::reload()
{
    m_matches.clear();
    m_shared->phase = Phase::NotScanned;
    ensureLoaded();
}

void MsfsAircraftLibrary::startScan()
{
    if (m_worker.post([shared = m_shared] { shared->phase = Phase::Ready; }))
        return;
    m_shared->phase = Phase::NotScanned;
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again),
                            "thread constructor failed");
}

bool MsfsAircraftLibrary::isReady() const
{
    return m_shared->phase == Phase::Ready;
}

qsizetype MsfsAircraftLibrary::modelCount(MsfsRuntimeProfile) const
{
    return 0;
}

int MsfsAircraftLibrary::scannedFiles() const
{
    return m_shared->scannedFiles;
}

void MsfsAircraftLibrary::stop()
{
    m_shared->isStopped = true;
    m_worker.finish();
}

MsfsModelMatch MsfsAircraftLibrary::match(MsfsRuntimeProfile profile, const QString &typeCode, const QString &airline,
                                          const QString &livery)
{
    MsfsModelMatch result;
    result.runtime = profile;
    result.normalizedType = typeCode.trimmed().toUpper();
    result.normalizedAirline = airline.trimmed().toUpper();
    result.normalizedLivery = livery.trimmed().toUpper();
    if (!isReady())
        ensureLoaded();
    return result;
}

std::optional<MsfsAircraftEntry> MsfsAircraftLibrary::findPeerHint(MsfsRuntimeProfile, const QString &) const
{
    return std::nullopt;
}

bool MsfsAircraftLibrary::isTypeCompatible(const MsfsAircraftEntry &, const QString &typeCode) const
{
    return typeCode.trimmed().isEmpty();
}

QList<MsfsScoredModel> MsfsAircraftLibrary::searchModels(const QString &, int, MsfsRuntimeProfile) const
{
    return {};
}

} // namespace tarvo::simulator::msfs
