#pragma once

#include "common/DropCount.h"
#include "simulator/xplane/ReportInbox.h"

#include <nng/nng.h>

#include <QByteArrayView>
#include <QObject>

#include <atomic>

namespace tarvo::simulator::xplane {

/// What a plugin may send at once, in bytes. It repeats the model paths that it was sent, which are less than half of
/// this; nng knows no limit by itself, and the plugin may be on another machine. A larger message ends the connection,
/// which is then dialled anew.
inline constexpr size_t largestReceived = 131072;

/// Receives and decodes the plugin's messages. Shared by the worker that runs it and the link that empties the inbox.
class PluginReceiver : public QObject
{
    Q_OBJECT

public:
    explicit PluginReceiver(nng_socket socket);
    ~PluginReceiver() override;

    /// Receives until stop(). On the worker's thread.
    void run();
    /// Ends the call under way and refuses any other. From any thread.
    void stop();

    ReportInbox &inbox() { return m_inbox; }

signals:
    /// Raised by the worker's thread when the inbox is to be drained.
    void inboxFilled();

private:
    void handleMessage(QByteArrayView message);
    void putIntoInbox(PluginReport report, size_t bytes);
    void tellRefused();

    const nng_socket m_socket;
    nng_aio *m_receive = nullptr;
    std::atomic<bool> m_stopped = false;
    ReportInbox m_inbox;
    common::DropCount m_malformed; ///< the worker's own
    common::DropCount m_refused;   ///< the same
};

} // namespace tarvo::simulator::xplane
