#include "voice/transport/NetworkHandler.h"

#include "common/Worker.h"
#include "voice/transport/Connecting.h"
#include "voice/transport/Connection.h"
#include "voice/transport/Identity.h"

#include <QDebug>
#include <QPointer>

#include <optional>
#include <utility>
#include <variant>

namespace tarvo::voice {

using common::DropCount;

namespace {

constexpr const char *prefix = "NetworkHandler:";

} // namespace

/// What receives and keeps alive, and what it does that for.
struct NetworkHandler::Threads
{
    Shared connection;
    common::Worker tcp{"voice control", 1};
    common::Worker udp{"voice packets", 1};
    common::Worker keepAlive{"voice keep-alive", 1};

    explicit Threads(Shared forConnection) : connection(std::move(forConnection)) {}
    ~Threads() { connection->end(); }
    Threads(const Threads &) = delete;
    Threads &operator=(const Threads &) = delete;
};

NetworkHandler::NetworkHandler(const ServiceEndpoints &endpoints, QObject *parent, const common::Clock &clock,
                               std::chrono::milliseconds keepAliveInterval)
    : QObject(parent),
      m_endpoints(endpoints),
      m_clock(clock),
      m_keepAliveInterval(keepAliveInterval),
      m_identity(std::make_shared<Identity>())
{
    startSockets();
    m_nextTurn.setSingleShot(true);
    m_nextTurn.setInterval(0);
    connect(&m_nextTurn, &QTimer::timeout, this, &NetworkHandler::handleReports);
    connect(this, &NetworkHandler::errorOccurred, this, [](const QString &error) { qCritical().noquote() << error; });
}

NetworkHandler::~NetworkHandler()
{
    stop();
}

std::function<void()> NetworkHandler::attempt(const QString &token)
{
    const auto connection = std::make_shared<Connection>(m_identity, token.toStdString());
    connect(connection.get(), &Connection::inboxFilled, &m_nextTurn, qOverload<>(&QTimer::start), Qt::QueuedConnection);
    Shared before;
    {
        const std::lock_guard lock(m_mutex);
        before = std::exchange(m_current, connection);
    }
    if (before)
        before->end();
    return [connection, endpoints = m_endpoints] { reachServer(connection, endpoints); };
}

void NetworkHandler::failAttempt(const QString &why)
{
    if (const Shared connection = current())
        connection->say(report::Failed{why});
}

void NetworkHandler::connectToServer(const QString &token)
{
    attempt(token)();
}

void NetworkHandler::disconnectFromServer()
{
    sendControlMessage(m_identity->disconnect());
    const Shared connection = current();
    emit socketStateChanged(false);
    end(connection); // and none that a receiver has begun
    qInfo() << prefix << "disconnected";
}

void NetworkHandler::stop()
{
    end(current());
}

void NetworkHandler::setCid(quint32 cid)
{
    m_identity->setCid(cid);
}

void NetworkHandler::setCallsign(const std::string &callsign)
{
    m_identity->setCallsign(callsign);
}

void NetworkHandler::sendControlMessage(const ControlMessage &message)
{
    if (const Shared connection = current())
        connection->sendMessage(message);
}

void NetworkHandler::sendVoicePacket(const std::vector<std::uint8_t> &packet)
{
    if (const Shared connection = current())
        connection->sendPacket(packet);
}

NetworkHandler::Shared NetworkHandler::current() const
{
    const std::lock_guard lock(m_mutex);
    return m_current;
}

void NetworkHandler::end(const Shared &connection)
{
    if (connection)
        connection->end();
    if (m_threads && m_threads->connection->isOver())
        m_threads.reset();
    const std::lock_guard lock(m_mutex);
    if (m_current == connection)
        m_current.reset();
}

/// False when there is no thread for it.
bool NetworkHandler::startThreads(const Shared &connection)
{
    m_threads = std::make_unique<Threads>(connection);
    return m_threads->tcp.post([connection] { connection->receiveLines(); }) &&
           m_threads->udp.post([connection] { connection->receivePackets(); }) &&
           m_threads->keepAlive.post([connection, interval = m_keepAliveInterval, clock = &m_clock] {
               connection->keepAlive(interval, *clock);
           });
}

/// May be on the stack more than once, under a receiver's event loop: the next turn goes on there.
void NetworkHandler::handleReports()
{
    const QPointer<NetworkHandler> alive(this);
    const qint64 start = m_clock.steadyMs();
    m_nextTurn.start();
    while (const Shared connection = current()) {
        const std::optional<Report> report = connection->inbox().take();
        if (!report) {
            tellDropped(*connection);
            break;
        }
        std::visit([&](const auto &what) { handle(connection, what); }, *report);
        if (!alive)
            return;
        if (m_clock.steadyMs() - start >= longestTurnMs)
            return;
    }
    m_nextTurn.stop();
}

void NetworkHandler::handle(const Shared &, const report::Note &note)
{
    const QMessageLogger log;
    (note.level == QtWarningMsg ? log.warning() : log.debug()).noquote() << prefix << note.text;
}

void NetworkHandler::handle(const Shared &connection, const report::Established &)
{
    const QPointer<NetworkHandler> alive(this);
    m_badLines.reset();
    emit socketStateChanged(true);
    if (connection->isOver()) // a receiver has changed its mind, and the handler may have gone
        return;
    if (!startThreads(connection)) {
        end(connection);
        emit errorOccurred(QStringLiteral("No thread is to be had for the voice connection"));
        if (alive)
            emit socketStateChanged(false);
        return;
    }
    qInfo() << prefix << "Voice server connected";
}

void NetworkHandler::handle(const Shared &connection, const report::Failed &failed)
{
    end(connection);
    emit errorOccurred(failed.why);
    qWarning().noquote() << prefix << failed.why;
}

void NetworkHandler::handle(const Shared &, const report::BadLine &line)
{
    if (m_badLines.add(m_clock.steadyMs()) != DropCount::Line::None)
        qWarning().noquote() << prefix << "failed to parse control message:" << line.why;
}

void NetworkHandler::handle(const Shared &, const report::Lost &)
{
    emit socketStateChanged(false);
}

void NetworkHandler::handle(const Shared &, const ControlMessage &message)
{
    emit controlMessageReceived(message);
}

void NetworkHandler::handle(const Shared &, const VoicePacket &packet)
{
    emit voicePacketReceived(packet);
}

void NetworkHandler::tellDropped(Connection &connection)
{
    const quint64 dropped = connection.inbox().takeDropped();
    if (dropped > 0 && m_droppedPackets.add(m_clock.steadyMs(), dropped) != DropCount::Line::None)
        qWarning() << prefix << "voice packets dropped, more came than could be handled, total"
                   << m_droppedPackets.total();
}

} // namespace tarvo::voice
