#include "traffic/LoadRun.h"

#include "practice/xplane/XPlaneStandIn.h"
#include "traffic/BareProgram.h"
#include "traffic/ClientArguments.h"
#include "traffic/Crowd.h"
#include "traffic/FsdEnd.h"
#include "traffic/PluginEnd.h"
#include "traffic/ProcessCost.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <functional>

namespace tarvo::bench {

namespace {

constexpr int longestLoginMs = 60'000;
constexpr int longestCrowdMs = 90'000;
constexpr int clientSettleMs = 6'000; ///< the start's questions and their answers are over by then
constexpr int loginSettleMs = 2'000;
constexpr double longestIdleSeconds = 20;
constexpr int longestDrainMs = 5'000;
constexpr int clientSlowIntervalMs = 5'000;
constexpr int lookIntervalMs = 50;

/// Everybody but the client.
class World
{
public:
    explicit World(const Load &load)
        : m_load(load),
          ledger(load.pilots, reportsOf(load)),
          plugin(urlOf(QStringLiteral("plugin")),
                 [this](QByteArrayView message, std::int64_t now) { return ledger.receive(message, now); }),
          fsd(load.pilots, load.rate, ledger)
    {
    }

    ~World()
    {
        fsd.hangUp();
        if (!client.waitForFinished(5000))
            client.kill();
        client.waitForFinished();
    }
    World(const World &) = delete;
    World &operator=(const World &) = delete;

    /// Empty when all is there.
    QString start()
    {
        // The stand-in's own plugin end is of no use here: it listens where nobody dials.
        if (!plugin.isListening() || !fsd.listen() ||
            !xplane.start(QHostAddress(QHostAddress::LocalHost), 0, urlOf(QStringLiteral("unused"))))
            return QStringLiteral("no free port");
        if (!xplane.setValue(QStringLiteral("sim/weather/aircraft/altimeter_temperature_error"),
                             crowd::temperatureErrorFeet))
            return QStringLiteral("X-Plane's altimeter is always right");
        QDir(m_folder.path()).mkpath(QStringLiteral("client/resources"));
        QFile::copy(QStringLiteral(TARVO_SOURCE_DIR "/resources/Doc8643.txt"),
                    m_folder.filePath(QStringLiteral("client/resources/Doc8643.txt")));
        const ClientArguments arguments{.folder = m_folder.filePath(QStringLiteral("client")),
                                        .fsdPort = fsd.port(),
                                        .xplanePort = xplane.udpPort(),
                                        .pluginUrl = urlOf(QStringLiteral("plugin")),
                                        .ordinaryThreads = m_load.ordinaryThreads};
        client.setProcessChannelMode(QProcess::ForwardedChannels);
        client.start(QCoreApplication::applicationFilePath(),
                     QStringList{QStringLiteral("client")} + arguments.toWords());
        return client.waitForStarted() ? QString() : QStringLiteral("the client does not start");
    }

    /// Runs the event loop until `condition` holds; false when that takes longer or the client ends.
    bool waitFor(int longestMs, const std::function<bool()> &condition)
    {
        const QDeadlineTimer deadline(longestMs);
        while (!condition()) {
            if (deadline.hasExpired() || client.state() == QProcess::NotRunning)
                return false;
            pass(lookIntervalMs);
        }
        return true;
    }

    void pass(int ms)
    {
        QEventLoop loop;
        QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
        loop.exec();
    }

private:
    static int reportsOf(const Load &load)
    {
        const double longest = load.seconds + (longestCrowdMs + clientSettleMs) / 1000.0 + 10;
        return static_cast<int>(longest * std::max(load.rate, 1.0));
    }
    QString urlOf(const QString &name) const { return QStringLiteral("ipc://%1/%2.ipc").arg(m_folder.path(), name); }

    const Load m_load;
    QTemporaryDir m_folder;

public:
    Ledger ledger;
    PluginEnd plugin;
    FsdEnd fsd;
    practice::XPlaneStandIn xplane;
    QProcess client;
};

/// Seconds and share of one core since some moment.
class Stopwatch
{
public:
    explicit Stopwatch(const World &world)
        : m_processId(world.client.processId()), m_before(costOf(m_processId)), m_start(steadyNs())
    {
    }

    const ProcessCost &atStart() const { return m_before; }
    double seconds() const { return static_cast<double>(steadyNs() - m_start) / 1e9; }
    double cpuShare(double seconds) const { return (costOf(m_processId).cpuSeconds - m_before.cpuSeconds) / seconds; }

private:
    qint64 m_processId;
    ProcessCost m_before;
    std::int64_t m_start;
};

/// Connected, and nobody else is there yet.
void measureIdle(World &world, const Load &load, LoadResult &result)
{
    world.pass(loginSettleMs);
    const Stopwatch watch(world);
    world.pass(static_cast<int>(std::min(load.seconds, longestIdleSeconds) * 1000));
    result.idleShare = watch.cpuShare(watch.seconds());
    result.residentStartMiB = watch.atStart().residentMiB;
}

void measure(World &world, const Load &load, LoadResult &result)
{
    const Stopwatch watch(world);
    world.ledger.begin();
    world.pass(static_cast<int>(load.seconds * 1000));
    world.ledger.end();
    result.seconds = watch.seconds();
    result.cpuShare = watch.cpuShare(result.seconds);
    result.residentCrowdMiB = watch.atStart().residentMiB;
    result.residentEndMiB = costOf(world.client.processId()).residentMiB;
    world.fsd.stopTraffic();
    world.waitFor(longestDrainMs, [&] { return world.ledger.outstanding() == 0; });
    result.lines = world.ledger.measuredLines();
    result.tally = world.ledger.tally();
    if (world.client.state() != QProcess::Running)
        result.failure = QStringLiteral("the client has ended by itself");
}

} // namespace

LoadResult runLoad(const Load &load)
{
    LoadResult result;
    World world(load);
    result.failure = world.start();
    if (!result.failure.isEmpty())
        return result;
    if (!world.waitFor(longestLoginMs, [&] { return world.fsd.isLoggedIn(); })) {
        result.failure = QStringLiteral("the client does not log in");
        return result;
    }
    measureIdle(world, load, result);
    world.fsd.startTraffic();
    if (!world.waitFor(longestCrowdMs, [&] { return world.ledger.completeCount() == load.pilots; })) {
        result.failure = QStringLiteral("only %1 of %2 aircraft reach the plugin both ways")
                             .arg(world.ledger.completeCount())
                             .arg(load.pilots);
        return result;
    }
    world.fsd.setSlowInterval(clientSlowIntervalMs);
    world.pass(clientSettleMs);
    measure(world, load, result);
    const BareResult bare = measureBare(load);
    result.bareShare = bare.cpuShare;
    if (result.failure.isEmpty())
        result.failure = bare.failure;
    return result;
}

} // namespace tarvo::bench
