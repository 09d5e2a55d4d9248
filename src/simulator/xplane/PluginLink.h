#pragma once

#include "common/Clock.h"
#include "common/Worker.h"
#include "simulator/xplane/PluginReports.h"
#include "simulator/xplane/PluginSender.h"
#include "simulator/xplane/SimulatorAddress.h"

#include <nng/nng.h>

#include <QByteArray>
#include <QObject>

#include <memory>
#include <utility>

namespace tarvo::simulator::xplane {

class PipeWatch;
class PluginReceiver;

/// The message socket to the X-Plane plugin. The client dials; a plugin that is not there yet is found when it comes.
///
/// Lives on the main thread, where its signals are raised. A worker receives and decodes; nothing here waits for it or
/// for the plugin.
class PluginLink : public QObject
{
    Q_OBJECT

public:
    /// The clock outlives the link.
    explicit PluginLink(const common::Clock &clock = common::systemClock(), QObject *parent = nullptr);
    /// Stops the worker and leaves the closing of the socket, and what has not been sent, to the background. Nothing
    /// the plugin does can delay this.
    ~PluginLink() override;

    /// Opens the socket, starts to dial, starts the worker and sends what was waiting. To be called once. A failure is
    /// reported by socketError, and the link is ready nevertheless: attempts on it end in their time-out.
    void open(const PluginAddress &address);
    bool isReady() const { return m_ready; }
    /// True while a plugin is connected.
    bool isConnected() const;
    /// Where no plugin is connected, begins the dialling anew at the same address. nng's own may have stopped for good:
    /// it does when the plugin goes between connection and handshake.
    void dialAnew();

    /// Sends one message, or keeps it until that is possible. Never waits.
    void send(OutgoingMessage message) { m_sender.send(std::move(message)); }

signals:
    void socketError(const QString &error);
    /// Neither Unknown nor Malformed ever comes this way.
    void reportReceived(const tarvo::simulator::xplane::PluginReport &report);
    /// A plugin has connected. `first`: the link has had none before, so that what was sent so far reaches this one.
    void pluginConnected(bool first);
    /// The plugin that is connected has missed messages: too many waited for it.
    void messagesLost();

private:
    void openSocket();
    int dial();
    void startReceiving();
    void onConnectionChanged(bool connected);
    void drainInbox();

    nng_socket m_socket = NNG_SOCKET_INITIALIZER;
    nng_dialer m_dialer = NNG_DIALER_INITIALIZER;
    PluginAddress m_address;
    bool m_opened = false;
    bool m_ready = false;
    bool m_hadPlugin = false;
    std::shared_ptr<PipeWatch> m_pipes; ///< null without a socket
    PluginSender m_sender;
    std::shared_ptr<PluginReceiver> m_receiver;
    common::Worker m_receiveWorker;
};

} // namespace tarvo::simulator::xplane
