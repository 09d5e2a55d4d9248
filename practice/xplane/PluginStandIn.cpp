#include "practice/xplane/PluginStandIn.h"

#include "common/nng/SocketCloser.h"

#include <algorithm>
#include <nng/nng.h>
#include <nng/protocol/pair1/pair.h>

namespace tarvo::practice {

namespace {
constexpr std::size_t largestMessage = 1 << 20;
constexpr int buffered = 1024;            // messages; a client that subscribes to nothing reads them late
constexpr qsizetype mostPending = 10'000; // answers; what comes when so many are due stays without one
} // namespace

struct PluginStandIn::Socket
{
    nng_socket handle = NNG_SOCKET_INITIALIZER;

    Socket() = default;
    Socket(const Socket &) = delete;
    Socket &operator=(const Socket &) = delete;
    ~Socket()
    {
        if (handle.id != 0)
            common::closeAndWait(handle);
    }

    /// The next message; null when there is none.
    QByteArray receive() const
    {
        void *data = nullptr;
        std::size_t size = 0;
        if (nng_recv(handle, &data, &size, NNG_FLAG_ALLOC | NNG_FLAG_NONBLOCK) != 0)
            return {};
        QByteArray bytes(static_cast<const char *>(data), static_cast<qsizetype>(size));
        nng_free(data, size);
        return bytes.isNull() ? QByteArray("") : bytes;
    }

    /// Opens and listens; an nng error number or 0.
    int open(const QByteArray &url, int *readable)
    {
        if (const int error = nng_pair1_open(&handle))
            return error;
        nng_socket_set_size(handle, NNG_OPT_RECVMAXSZ, largestMessage);
        nng_socket_set_int(handle, NNG_OPT_SENDBUF, buffered);
        nng_socket_set_int(handle, NNG_OPT_RECVBUF, buffered);
        if (const int error = nng_listen(handle, url.constData(), nullptr, 0))
            return error;
        return nng_socket_get_int(handle, NNG_OPT_RECVFD, readable);
    }
};

PluginStandIn::PluginStandIn(const common::Clock &clock, QObject *parent) : QObject(parent), m_clock(clock)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &PluginStandIn::answerDue);
}

PluginStandIn::~PluginStandIn()
{
    close();
}

bool PluginStandIn::listen(const QString &url)
{
    close();
    auto socket = std::make_unique<Socket>();
    int readable = -1;
    if (const int error = socket->open(url.toUtf8(), &readable)) {
        m_error = QStringLiteral("plugin socket %1: %2").arg(url, QString::fromUtf8(nng_strerror(error)));
        return false;
    }
    m_url = url;
    m_socket = std::move(socket);
    m_notifier = std::make_unique<QSocketNotifier>(readable, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &PluginStandIn::receiveAll);
    return true;
}

void PluginStandIn::close()
{
    m_notifier.reset(); // before the descriptor that it watches goes away
    m_socket.reset();
    m_timer.stop();
    m_pending.clear();
    m_drawn.clear();
}

bool PluginStandIn::vanish()
{
    const bool wasThere = isListening();
    close();
    return wasThere;
}

bool PluginStandIn::comeBack()
{
    return !isListening() && !m_url.isEmpty() && listen(m_url);
}

QString PluginStandIn::url() const
{
    return m_url;
}

QString PluginStandIn::errorString() const
{
    return m_error;
}

void PluginStandIn::setVersion(qint64 version)
{
    m_version = version;
}

void PluginStandIn::setCslValid(bool valid)
{
    m_cslValid = valid;
}

void PluginStandIn::setMute(bool mute)
{
    m_mute = mute;
}

void PluginStandIn::setAddAnswering(PluginAnswering answering)
{
    m_addAnswering = answering;
}

void PluginStandIn::setDelAnswering(PluginAnswering answering)
{
    m_delAnswering = answering;
}

void PluginStandIn::receiveAll()
{
    while (m_socket) {
        const QByteArray bytes = m_socket->receive();
        if (bytes.isNull())
            return;
        receive(bytes);
    }
}

void PluginStandIn::receive(const QByteArray &bytes)
{
    emit bytesReceived(bytes);
    QString error;
    const std::optional<PluginMessage> message = PluginMessage::fromBytes(bytes, &error);
    if (!message) {
        emit malformed(error);
        return;
    }
    if (message->name == QLatin1StringView("DELALL"))
        m_pending.clear();
    m_drawn.take(*message);
    emit messageReceived(message->name, message->arguments);
    if (!m_mute && isListening())
        answer(*message);
}

void PluginStandIn::answer(const PluginMessage &message)
{
    const bool aboutOne = !message.arguments.value(0).toString().isEmpty();
    if (message.name == QLatin1StringView("VER"))
        send(message.name, m_version < 0 ? QVariantList() : QVariantList{m_version});
    else if (message.name == QLatin1StringView("CSL"))
        send(message.name, {message.arguments.value(0).toList(), m_cslValid});
    else if (message.name == QLatin1StringView("ADD") && aboutOne)
        answerLater(message, m_addAnswering);
    else if (message.name == QLatin1StringView("DEL") && aboutOne)
        answerLater(message, m_delAnswering);
}

void PluginStandIn::answerLater(const PluginMessage &message, const PluginAnswering &answering)
{
    if (answering.silent)
        return;
    Pending pending{m_clock.steadyMs() + answering.delayMs, message};
    bool waits = answering.delayMs > 0;
    for (const Pending &earlier : m_pending) {
        if (earlier.callsign() != pending.callsign())
            continue;
        waits = true; // a DEL doesn't overtake the ADD that is still being worked on
        pending.dueMs = std::max(pending.dueMs, earlier.dueMs);
    }
    if (!waits) {
        carryOut(message);
    } else if (m_pending.size() < mostPending) {
        const auto place = std::upper_bound(m_pending.begin(), m_pending.end(), pending.dueMs,
                                            [](qint64 due, const Pending &other) { return due < other.dueMs; });
        m_pending.insert(place, pending);
        armTimer();
    }
}

void PluginStandIn::carryOut(const PluginMessage &message)
{
    const QString callsign = message.arguments.value(0).toString();
    const bool added = message.name == QLatin1StringView("ADD");
    if (added)
        m_drawn.add(message.arguments);
    else
        m_drawn.remove(callsign);
    send(added ? QStringLiteral("ADDED") : QStringLiteral("DELETED"), {callsign});
}

void PluginStandIn::answerDue()
{
    const qint64 now = m_clock.steadyMs();
    while (!m_pending.isEmpty() && m_pending.constFirst().dueMs <= now) {
        const Pending pending = m_pending.takeFirst();
        if (!m_mute)
            carryOut(pending.message);
    }
    armTimer();
}

void PluginStandIn::armTimer()
{
    if (m_pending.isEmpty())
        m_timer.stop();
    else
        m_timer.start(static_cast<int>(std::max<qint64>(1, m_pending.constFirst().dueMs - m_clock.steadyMs())));
}

bool PluginStandIn::send(const QString &name, const QVariantList &arguments)
{
    if (!sendRaw(PluginMessage{name, arguments}.toBytes()))
        return false;
    emit messageSent(name, arguments);
    return true;
}

bool PluginStandIn::sendRaw(const QByteArray &bytes)
{
    if (!m_socket)
        return false;
    QByteArray copy = bytes; // nng takes a pointer to bytes that it doesn't change
    return nng_send(m_socket->handle, copy.data(), static_cast<std::size_t>(copy.size()), NNG_FLAG_NONBLOCK) == 0;
}

bool PluginStandIn::sendRadioMessage(const QString &message)
{
    return send(QStringLiteral("RDIOSENT"), {message});
}

bool PluginStandIn::sendPrivateMessage(const QString &to, const QString &message)
{
    return send(QStringLiteral("PRIVSENT"), {to, message});
}

bool PluginStandIn::requestStation(const QString &callsign)
{
    return send(QStringLiteral("REQSTATION"), {callsign});
}

bool PluginStandIn::forceDisconnect(const QString &reason)
{
    return send(QStringLiteral("FORCEDISC"), {reason});
}

bool PluginStandIn::shutDown()
{
    return send(QStringLiteral("SHUTDOWN"), {});
}

} // namespace tarvo::practice
