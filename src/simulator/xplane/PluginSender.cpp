#include "simulator/xplane/PluginSender.h"

#include "common/Clock.h"
#include "common/TrafficLog.h"

#include <QDebug>
#include <QMetaObject>

#include <algorithm>
#include <utility>

namespace tarvo::simulator::xplane {

namespace {

constexpr qsizetype tooLarge = 65536;
/// A long outbox must not hold up the event loop.
constexpr int messagesPerTurn = 1000;

nng_msg *packetOf(const QByteArray &bytes)
{
    nng_msg *packet = nullptr;
    if (nng_msg_alloc(&packet, static_cast<size_t>(bytes.size())) != 0)
        return nullptr;
    std::copy_n(bytes.constData(), bytes.size(), static_cast<char *>(nng_msg_body(packet)));
    return packet;
}

/// In words for the log.
QString nameOf(const OutgoingMessage &message)
{
    switch (message.kind) {
    case OutgoingMessage::Kind::Position:
        return QStringLiteral("a position of ") + message.callsign;
    case OutgoingMessage::Kind::Existence:
        return QStringLiteral("an addition or removal of ") + message.callsign;
    case OutgoingMessage::Kind::ExistenceOfAll:
        return QStringLiteral("the removal of all");
    case OutgoingMessage::Kind::Other:
        break;
    }
    return QStringLiteral("a message");
}

} // namespace

PluginSender::PluginSender(const common::Clock &clock, QObject *parent) : QObject(parent), m_clock(clock) {}

PluginSender::~PluginSender()
{
    for (nng_msg *message : end())
        nng_msg_free(message);
}

void PluginSender::start(nng_socket socket)
{
    m_socket = socket;
    if (nng_aio_alloc(&m_quick, nullptr, nullptr) != 0 || nng_aio_alloc(&m_wait, &PluginSender::onWaitEnded, this) != 0)
        return; // nothing will ever leave; the attempts end in their time-out
    nng_aio_set_timeout(m_quick, NNG_DURATION_ZERO);
    nng_aio_set_timeout(m_wait, NNG_DURATION_INFINITE);
    connect(this, &PluginSender::roomMade, this, [this] {
        m_isWaiting = false;
        flush();
    });
    flush();
}

void PluginSender::send(OutgoingMessage message)
{
    if (message.bytes.size() >= tooLarge) {
        tellDrop(m_tooLong, 1, message, QStringLiteral("it is too long"));
        message.bytes.clear();
    }
    if (m_isReady)
        hand(message.bytes);
    else
        keep(message);
}

void PluginSender::keep(const OutgoingMessage &message)
{
    const bool lostBefore = m_outbox.hasLost();
    const quint64 lost = m_outbox.put(message);
    if (lost == 0)
        return;
    if (!lostBefore)
        qWarning() << "X-Plane plugin does not read: messages are lost until it does";
    tellDrop(m_unread, lost, message, QStringLiteral("the buffer is full"));
}

void PluginSender::tellDrop(common::DropCount &drops, quint64 count, const OutgoingMessage &last, const QString &why)
{
    const common::DropCount::Line line = drops.add(m_clock.steadyMs(), count);
    if (line == common::DropCount::Line::None)
        return;
    const QString text = common::trafficText("dropped", nameOf(last), "the plugin link", why) +
                         QStringLiteral(", total %1").arg(drops.total());
    if (line == common::DropCount::Line::Warning)
        qCWarning(common::trafficLog).noquote() << text;
    else
        qCDebug(common::trafficLog).noquote() << text;
}

void PluginSender::tellLoss()
{
    qCWarning(common::trafficLog) << "Traffic: X-Plane plugin reads again;" << m_unread.reset() << "messages are lost";
    emit messagesLost();
}

/// A callback for each message would cost more than all the rest of it. So nng is asked without one, as nng_send()
/// does without making an operation for each, and only what finds no room gets a callback.
void PluginSender::hand(const QByteArray &bytes)
{
    nng_msg *message = packetOf(bytes);
    if (!message)
        return;
    nng_aio_set_msg(m_quick, message);
    nng_send_aio(m_socket, m_quick);
    nng_aio_wait(m_quick);
    if (nng_aio_result(m_quick) == 0)
        return;
    m_isWaiting = true;
    m_isReady = false;
    nng_aio_set_msg(m_wait, message);
    nng_send_aio(m_socket, m_wait);
}

void PluginSender::onWaitEnded(void *sender)
{
    auto *self = static_cast<PluginSender *>(sender);
    if (nng_aio_result(self->m_wait) == 0) // else the end has come
        emit self->roomMade({});
}

void PluginSender::flush()
{
    if (!m_wait)
        return; // ended
    for (int i = 0; i < messagesPerTurn && !m_isWaiting; ++i) {
        const std::optional<QByteArray> bytes = m_outbox.next();
        if (!bytes) {
            m_isReady = true;
            if (m_outbox.takeLoss())
                tellLoss();
            return;
        }
        hand(*bytes);
    }
    if (!m_isWaiting)
        QMetaObject::invokeMethod(this, &PluginSender::flush, Qt::QueuedConnection);
}

std::vector<nng_msg *> PluginSender::end()
{
    m_isReady = false;
    if (m_wait)
        nng_aio_stop(m_wait);
    std::vector<nng_msg *> unsent;
    if (std::exchange(m_isWaiting, false) && nng_aio_result(m_wait) != 0)
        unsent.push_back(nng_aio_get_msg(m_wait));
    while (const std::optional<QByteArray> bytes = m_outbox.next()) {
        if (nng_msg *message = packetOf(*bytes))
            unsent.push_back(message);
    }
    nng_aio_free(std::exchange(m_wait, nullptr));
    nng_aio_free(std::exchange(m_quick, nullptr));
    return unsent;
}

} // namespace tarvo::simulator::xplane
