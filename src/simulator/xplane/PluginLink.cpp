#include "simulator/xplane/PluginLink.h"

#include "common/nng/SocketCloser.h"
#include "simulator/xplane/MessageThreads.h"

#include <nng/protocol/pair1/pair.h>

#include <QDebug>
#include <QMetaObject>
#include <QPointer>

#include <algorithm>
#include <bit>
#include <system_error>
#include <utility>

namespace tarvo::simulator::xplane {

namespace {

constexpr int socketBufferMessages = 8192;
constexpr qsizetype tooLarge = 65536;
/// What the plugin may send at once. It repeats the model paths that it was sent, which are less than half of this; the
/// library knows no limit by itself, and the plugin may be on another machine. A larger message ends the connection,
/// which is then dialled anew.
constexpr size_t largestReceived = 131072;
constexpr size_t inboxCapacity = 256;

/// Every malformed message gets its line, up to this many; a plugin that is merely broken does not reach it.
constexpr quint64 malformedBurst = 20;

/// Beyond the burst only each doubling of the count is logged (40, 80, 160...): a flood of bad messages must not become
/// a flood of lines that fills the disk. The line tells the count, so that none is lost from sight.
bool isLogged(quint64 malformedCount)
{
    return malformedCount <= malformedBurst ||
           (malformedCount % malformedBurst == 0 && std::has_single_bit(malformedCount / malformedBurst));
}

QString errorText(int result)
{
    return QString::fromUtf8(nng_strerror(result));
}

} // namespace

PluginLink::~PluginLink()
{
    {
        const std::lock_guard lock(m_inboxMutex);
        m_running = false;
    }
    m_inboxHasRoom.notify_all();
    if (m_receive)
        nng_aio_stop(m_receive); // ends the receive call under way and refuses any other
    if (m_thread.joinable())
        m_thread.join();
    nng_aio_free(m_receive);
    nng_aio_free(m_send);
    if (m_opened)
        common::closeInBackground(m_socket);
}

void PluginLink::open(const PluginAddress &address)
{
    Q_ASSERT(!m_ready);
    connect(this, &PluginLink::inboxFilled, this, &PluginLink::drainInbox);
    openSocket();
    dial(address);
    startReceiving();
    m_ready = true;
    for (const QByteArray &message : std::exchange(m_waiting, {}))
        sendNow(message);
}

void PluginLink::openSocket()
{
    startMessageThreads();
    const int result = nng_pair1_open(&m_socket);
    m_opened = result == 0;
    if (!m_opened) {
        emit socketError(QStringLiteral("Error opening socket: %1").arg(errorText(result)));
        return;
    }
    nng_socket_set_int(m_socket, NNG_OPT_RECVBUF, socketBufferMessages);
    nng_socket_set_int(m_socket, NNG_OPT_SENDBUF, socketBufferMessages);
    nng_socket_set_size(m_socket, NNG_OPT_RECVMAXSZ, largestReceived);
    if (nng_aio_alloc(&m_send, nullptr, nullptr) == 0)
        nng_aio_set_timeout(m_send, NNG_DURATION_ZERO); // a full buffer must not freeze the caller
}

void PluginLink::dial(const PluginAddress &address)
{
    const int result = nng_dial(m_socket, address.url.toUtf8().constData(), nullptr, NNG_FLAG_NONBLOCK);
    if (result == 0)
        return;
    if (address.local)
        emit socketError(QStringLiteral("Error dialing socket: %1").arg(errorText(result)));
    else
        emit socketError(QStringLiteral("Error dialing socket (%1): %2").arg(address.url, errorText(result)));
}

void PluginLink::send(const QByteArray &message)
{
    if (m_ready) {
        sendNow(message);
    } else if (m_waiting.size() < socketBufferMessages) {
        m_waiting.append(message);
        m_waiting.last().squeeze();
    }
}

/// What nng_send() does, without making and ending an operation for each message: in dense traffic that is most of the
/// cost of a message.
void PluginLink::sendNow(const QByteArray &message)
{
    // An empty send is all that remains of a message that is too large.
    const size_t size = message.size() < tooLarge ? static_cast<size_t>(message.size()) : 0;
    nng_msg *packet = nullptr;
    if (!m_send || nng_msg_alloc(&packet, size) != 0)
        return;
    std::copy_n(message.constData(), size, static_cast<char *>(nng_msg_body(packet)));
    nng_aio_set_msg(m_send, packet);
    nng_send_aio(m_socket, m_send);
    nng_aio_wait(m_send);
    if (nng_aio_result(m_send) != 0) // of no other interest: the plugin may be away
        nng_msg_free(packet);
}

void PluginLink::startReceiving()
{
    if (!m_opened || nng_aio_alloc(&m_receive, nullptr, nullptr) != 0)
        return; // nothing will ever come; the attempts end in their time-out
    m_running = true;
    try {
        m_thread = std::thread([this] { receiveLoop(); });
    } catch (const std::system_error &error) {
        m_running = false;
        qWarning() << "X-Plane plugin receive thread does not start:" << error.what();
    }
}

void PluginLink::receiveLoop()
{
    while (m_running) {
        nng_recv_aio(m_socket, m_receive);
        nng_aio_wait(m_receive);
        const int result = nng_aio_result(m_receive);
        if (result != 0) {
            if (m_running)
                qWarning() << "X-Plane plugin receive thread ends:" << nng_strerror(result);
            return;
        }
        nng_msg *message = nng_aio_get_msg(m_receive);
        handleMessage(QByteArrayView(static_cast<const char *>(nng_msg_body(message)),
                                     static_cast<qsizetype>(nng_msg_len(message))));
        nng_msg_free(message);
    }
}

void PluginLink::handleMessage(QByteArrayView message)
{
    PluginReport report = unpackReport(message);
    if (const auto *malformed = std::get_if<report::Malformed>(&report)) {
        if (isLogged(++m_malformedCount))
            qWarning() << "X-Plane plugin message dropped:" << malformed->why << "total" << m_malformedCount;
    } else if (!std::holds_alternative<report::Unknown>(report)) {
        putIntoInbox(std::move(report));
    }
}

void PluginLink::putIntoInbox(PluginReport report)
{
    bool drainIsToBeScheduled = false;
    {
        std::unique_lock lock(m_inboxMutex);
        m_inboxHasRoom.wait(lock, [this] { return m_inbox.size() < inboxCapacity || !m_running; });
        if (!m_running)
            return;
        m_inbox.push_back(std::move(report));
        drainIsToBeScheduled = !std::exchange(m_drainScheduled, true);
    }
    if (drainIsToBeScheduled)
        emit inboxFilled({});
}

std::optional<PluginReport> PluginLink::takeFromInbox()
{
    std::optional<PluginReport> report;
    {
        const std::lock_guard lock(m_inboxMutex);
        if (m_inbox.empty())
            return std::nullopt;
        report = std::move(m_inbox.front());
        m_inbox.pop_front();
    }
    m_inboxHasRoom.notify_one();
    return report;
}

void PluginLink::drainInbox()
{
    const QPointer<PluginLink> alive(this);
    {
        // Not only at the end: a receiver that runs an event loop of its own gets the later reports there.
        const std::lock_guard lock(m_inboxMutex);
        m_drainScheduled = false;
    }
    // One inbox at a time, and never more than one drain under way: while messages keep pouring in, the event loop gets
    // its turn in between.
    for (size_t i = 0; i < inboxCapacity; ++i) {
        const std::optional<PluginReport> report = takeFromInbox();
        if (!report)
            return;
        emit reportReceived(*report);
        if (!alive)
            return;
    }
    {
        const std::lock_guard lock(m_inboxMutex);
        if (m_inbox.empty() || std::exchange(m_drainScheduled, true))
            return;
    }
    QMetaObject::invokeMethod(this, &PluginLink::drainInbox, Qt::QueuedConnection);
}

} // namespace tarvo::simulator::xplane
