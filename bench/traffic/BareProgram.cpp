#include "traffic/BareProgram.h"

#include "common/nng/SocketCloser.h"
#include "model/AircraftVisualState.h"
#include "model/RemoteAircraft.h"
#include "model/VelocityVector.h"
#include "simulator/xplane/MessagePool.h"
#include "simulator/xplane/PluginMessages.h"
#include "traffic/Crowd.h"
#include "traffic/FsdEnd.h"
#include "traffic/PluginEnd.h"
#include "traffic/ProcessCost.h"
#include "traffic/Scheduling.h"

#include <nng/protocol/pair1/pair.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

namespace tarvo::bench {

namespace {

constexpr int bufferedMessages = 8192;
constexpr int slowIntervalMs = 5'000;
constexpr int settleMs = 2'000;

void pass(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Reads lines, and sends two messages for each.
class BareProgram
{
public:
    explicit BareProgram(const ClientArguments &arguments)
    {
        namespace message = simulator::xplane::message;
        model::RemoteAircraft aircraft;
        aircraft.callsign = crowd::callsignOf(0);
        m_fast = message::fastPosition(aircraft, {}, {}, {});
        m_slow = message::position(aircraft, {});
        m_heartbeat = message::heartbeat(aircraft.callsign);
        nng_pair1_open(&m_nng);
        nng_socket_set_int(m_nng, NNG_OPT_SENDBUF, bufferedMessages);
        nng_dial(m_nng, arguments.pluginUrl.toUtf8().constData(), nullptr, 0);
        QObject::connect(&m_socket, &QTcpSocket::readyRead, &m_socket, [this] { read(); });
        QObject::connect(&m_socket, &QTcpSocket::disconnected, &m_socket, [] { QCoreApplication::exit(0); });
        m_socket.connectToHost(QStringLiteral("127.0.0.1"), arguments.fsdPort);
    }
    ~BareProgram() { common::closeAndWait(m_nng); }
    BareProgram(const BareProgram &) = delete;
    BareProgram &operator=(const BareProgram &) = delete;

private:
    void read()
    {
        m_received += m_socket.readAll();
        qsizetype start = 0;
        for (qsizetype end = m_received.indexOf('\n'); end >= 0; end = m_received.indexOf('\n', start)) {
            answer(m_received.at(start));
            start = end + 1;
        }
        m_received.remove(0, start);
    }

    void answer(char identifier)
    {
        if (identifier == '^') {
            send(m_fast);
            send(m_fast);
        } else if (identifier == '@') {
            send(m_slow);
            send(m_heartbeat);
        }
    }

    void send(QByteArray &message) { nng_send(m_nng, message.data(), static_cast<size_t>(message.size()), 0); }

    QByteArray m_fast;
    QByteArray m_slow;
    QByteArray m_heartbeat;
    QByteArray m_received;
    QTcpSocket m_socket;
    nng_socket m_nng = NNG_SOCKET_INITIALIZER;
};

} // namespace

BareResult measureBare(const Load &load)
{
    const QTemporaryDir folder;
    const QString url = QStringLiteral("ipc://%1/bare.ipc").arg(folder.path());
    Ledger ledger(load.pilots, static_cast<int>((load.seconds + settleMs / 1000.0 + 10) * std::max(load.rate, 1.0)));
    const PluginEnd plugin(url, [](QByteArrayView, std::int64_t) { return QString(); });
    FsdEnd fsd(load.pilots, load.rate, ledger);
    if (!plugin.isListening() || !fsd.listen())
        return {QStringLiteral("no free port for the bare program"), 0};
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    ClientArguments arguments;
    arguments.fsdPort = fsd.port();
    arguments.pluginUrl = url;
    arguments.ordinaryThreads = load.ordinaryThreads;
    process.start(QCoreApplication::applicationFilePath(), QStringList{QStringLiteral("bare")} + arguments.toWords());
    process.waitForStarted();
    fsd.setSlowInterval(slowIntervalMs);
    pass(settleMs);
    fsd.startTraffic();
    pass(settleMs);
    const double before = costOf(process.processId()).cpuSeconds;
    const std::int64_t start = steadyNs();
    pass(static_cast<int>(load.seconds * 1000));
    const double seconds = static_cast<double>(steadyNs() - start) / 1e9;
    const double used = costOf(process.processId()).cpuSeconds - before;
    const bool alive = process.state() == QProcess::Running;
    fsd.hangUp();
    if (!process.waitForFinished(5000))
        process.kill();
    process.waitForFinished();
    return {alive ? QString() : QStringLiteral("the bare program has ended by itself"), used / seconds};
}

int runBareProgram(const ClientArguments &arguments)
{
    if (arguments.ordinaryThreads)
        startOrdinaryMessageThreads();
    else
        simulator::xplane::limitMessagePool();
    const BareProgram program(arguments);
    return QCoreApplication::exec();
}

} // namespace tarvo::bench
