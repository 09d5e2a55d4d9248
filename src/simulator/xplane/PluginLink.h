#pragma once

#include "simulator/xplane/PluginReports.h"
#include "simulator/xplane/SimulatorAddress.h"

#include <nng/nng.h>

#include <QByteArray>
#include <QList>
#include <QObject>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

namespace tarvo::simulator::xplane {

/// The message socket to the X-Plane plugin. The client dials; a plugin that is not there yet is found when it comes.
///
/// Lives on the main thread, where its signals are raised. A thread of its own blocks in the receive call, decodes, and
/// hands each report over; when the main thread lags behind, that thread waits.
class PluginLink : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    /// Wakes the thread, waits for it and leaves the closing of the socket to the background. Nothing the plugin does
    /// can delay this.
    ~PluginLink() override;

    /// Opens the socket, starts to dial, starts the thread and sends what was waiting. To be called once. A failure is
    /// reported by socketError, and the link is ready nevertheless: attempts on it end in their time-out.
    void open(const PluginAddress &address);
    bool isReady() const { return m_ready; }

    /// Sends one message, or keeps it until open(). Never blocks: what does not fit into the socket's buffer is lost.
    /// Of a message of 65536 bytes or more only an empty one is sent.
    void send(const QByteArray &message);

signals:
    void socketError(const QString &error);
    /// Neither Unknown nor Malformed ever comes this way.
    void reportReceived(const tarvo::simulator::xplane::PluginReport &report);
    /// Raised by the thread when the inbox is to be emptied.
    void inboxFilled(QPrivateSignal);

private:
    void openSocket();
    void dial(const PluginAddress &address);
    void sendNow(const QByteArray &message);
    void startReceiving();
    void receiveLoop();
    void handleMessage(QByteArrayView message);
    void putIntoInbox(PluginReport report);
    std::optional<PluginReport> takeFromInbox();
    void drainInbox();

    nng_socket m_socket = NNG_SOCKET_INITIALIZER;
    nng_aio *m_send = nullptr;
    nng_aio *m_receive = nullptr;
    bool m_opened = false;
    bool m_ready = false;
    QList<QByteArray> m_waiting;
    std::atomic<bool> m_running = false;
    std::thread m_thread;
    quint64 m_malformedCount = 0; ///< the thread's own
    std::mutex m_inboxMutex;
    std::condition_variable m_inboxHasRoom;
    std::deque<PluginReport> m_inbox;
    bool m_drainScheduled = false; ///< guarded by the inbox's mutex, as the inbox is
};

} // namespace tarvo::simulator::xplane
