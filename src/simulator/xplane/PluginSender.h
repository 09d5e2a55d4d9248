#pragma once

#include "common/DropCount.h"
#include "simulator/xplane/Outbox.h"

#include <nng/nng.h>

#include <QObject>

#include <vector>

namespace tarvo::common {
class Clock;
}

namespace tarvo::simulator::xplane {

/// Sends to the plugin without ever waiting. What doesn't fit into nng's buffer stays in the outbox, which nng's own
/// call empties as soon as there is room. Main thread only.
class PluginSender : public QObject
{
    Q_OBJECT

public:
    /// The clock outlives the sender.
    explicit PluginSender(const common::Clock &clock, QObject *parent = nullptr);
    ~PluginSender() override;

    /// From now on messages go to the socket, those that wait already first. To be called once; the socket outlives
    /// the sender, or end() is called before.
    void start(nng_socket socket);
    /// Before start() the message waits. One of 65536 bytes or more is sent as an empty message.
    void send(OutgoingMessage message);
    /// Ends the sending for good. Gives what has not left, in order; the messages are the caller's to free.
    std::vector<nng_msg *> end();

signals:
    /// The plugin reads again after more was lost than can be kept for it: it has to be told everything anew.
    void messagesLost();
    /// Raised by a thread of nng's when the message that waited for room is on its way.
    void roomMade(QPrivateSignal);

private:
    static void onWaitEnded(void *sender);
    void keep(const OutgoingMessage &message);
    void hand(const QByteArray &bytes);
    void flush();
    void tellDrop(common::DropCount &drops, quint64 count, const OutgoingMessage &last, const QString &why);
    void tellLoss();

    const common::Clock &m_clock;
    nng_socket m_socket = NNG_SOCKET_INITIALIZER;
    nng_aio *m_quick = nullptr; ///< gives up at once when there is no room
    nng_aio *m_wait = nullptr;  ///< holds one message until there is room
    bool m_isWaiting = false;   ///< m_wait is at work
    bool m_isReady = false;     ///< what comes may leave at once: nothing is before it
    Outbox m_outbox;
    common::DropCount m_tooLong;
    common::DropCount m_unread; ///< since the plugin was given up
};

} // namespace tarvo::simulator::xplane
