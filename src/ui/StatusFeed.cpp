#include "ui/StatusFeed.h"

#include "manager/NetworkManager.h"
#include "ui/viewmodel/DashboardViewModel.h"
#include "ui/viewmodel/ServerPageViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"
#include "ui/viewmodel/StatusViewModel.h"
#include "ui/viewmodel/VoiceServiceViewModel.h"
#include "voice/client/VoiceClient.h"

#include <utility>

namespace tarvo::ui {

using common::MessageType;
using manager::NetworkManager;

StatusFeed::StatusFeed(std::shared_ptr<NetworkManager> network, const StatusSources &sources, StatusViewModel &status,
                       QObject *parent, const common::Clock &clock)
    : QObject(parent), m_network(std::move(network)), m_from(sources), m_status(status), m_clock(clock)
{
    connectStates();
    connectWishes();
    connectSession();
}

void StatusFeed::connectStates()
{
    connect(&m_from.dashboard, &DashboardViewModel::serverStateChanged, this,
            [this] { m_status.setNetwork(m_from.dashboard.serverConnected(), m_from.dashboard.serverState()); });
    connect(&m_from.dashboard, &DashboardViewModel::simulatorStateChanged, this, &StatusFeed::showSimulator);
    connect(&m_from.simulator, &SimulatorPageViewModel::stateChanged, this,
            [this] { m_from.dashboard.setSimulatorFailure(m_from.simulator.simulatorFailureText()); });
    connect(&m_from.voice, &VoiceServiceViewModel::connectStateChanged, this, &StatusFeed::showVoice);
}

void StatusFeed::connectWishes()
{
    const auto leaves = [this] { m_networkEndWished = true; };
    connect(&m_from.dashboard, &DashboardViewModel::serverDisconnectRequest, this, leaves);
    connect(&m_from.server, &ServerPageViewModel::disconnectRequested, this, leaves);
    connect(&m_from.dashboard, &DashboardViewModel::serverConnectRequest, this, &StatusFeed::networkBegins);
    connect(&m_from.server, &ServerPageViewModel::connectRequested, this, &StatusFeed::networkBegins);
    const auto wishes = [this] {
        m_simulatorEndWished = true;
        m_from.simulator.setFailure({});
        m_status.forgetSimulator();
    };
    connect(&m_from.dashboard, &DashboardViewModel::modeChangedRequest, this, wishes);
    connect(&m_from.dashboard, &DashboardViewModel::simulatorReconnectRequest, this, wishes);
    connect(&m_from.simulator, &SimulatorPageViewModel::reconnectRequested, this, wishes);
}

void StatusFeed::connectSession()
{
    const NetworkManager *network = m_network.get();
    connect(network, &NetworkManager::notificationPosted, this, &StatusFeed::onNotification);
    connect(network, &NetworkManager::networkConnected, this, [this] {
        m_networkEndWished = false;
        m_error = {};
    });
    connect(network, &NetworkManager::networkDisconnected, this, &StatusFeed::onNetworkEnded);
    connect(network, &NetworkManager::simulatorConnectionFailed, this, &StatusFeed::onSimulatorFailed);
    connect(&m_network->voiceClient(), &voice::VoiceClient::errorOccurred, this, &StatusFeed::onVoiceError);
    connect(network, &NetworkManager::privateMessageReceived, this, &StatusFeed::attentionWanted);
    connect(network, &NetworkManager::selcalAlertReceived, this, &StatusFeed::attentionWanted);
}

void StatusFeed::networkBegins()
{
    m_networkEndWished = false;
    m_error = {};
    m_from.server.setFailure({});
    m_status.forgetNetwork();
}

void StatusFeed::onNotification(const QString &message, MessageType type)
{
    if (type != MessageType::Error)
        return;
    m_error = {tellingError(m_error.text, message), m_clock.steadyMs()};
    if (!m_network->isBusy()) // a refusal: no session has begun that could end
        failNetwork(shownReason(message));
}

void StatusFeed::onNetworkEnded()
{
    const bool wished = std::exchange(m_networkEndWished, false);
    const ToldError error = std::exchange(m_error, {});
    if (wished)
        return;
    failNetwork(reasonOfEnd(error, m_clock.steadyMs()));
    emit attentionWanted();
}

void StatusFeed::failNetwork(const QString &reason)
{
    m_from.server.setFailure(reason);
    m_status.networkFailed(reason);
}

void StatusFeed::showSimulator()
{
    const bool connected = m_from.dashboard.simulatorConnected();
    m_status.setSimulator(connected, m_from.dashboard.simulatorState());
    const bool ended = std::exchange(m_simulatorWas, connected) && !connected;
    const bool wished = m_simulatorEndWished;
    if (connected || ended)
        m_simulatorEndWished = false;
    if (!ended)
        return;
    if (wished || !m_from.dashboard.serverConnected()) {
        m_status.forgetSimulator();
        return;
    }
    m_status.simulatorFailed(tr("模拟器不再发送数据。"));
    emit attentionWanted();
}

void StatusFeed::showVoice()
{
    const VoiceServiceViewModel &voice = m_from.voice;
    m_status.setVoice(voice.connected(), voice.linkState());
    const bool ended = std::exchange(m_voiceWas, voice.connected()) && !voice.connected();
    if (voice.isConnecting()) {
        m_voiceError = {};
        m_status.forgetVoice();
        return;
    }
    if (!ended || !m_from.dashboard.serverConnected()) // the network's end is voice's, too
        return;
    m_status.voiceFailed(reasonOfEnd(std::exchange(m_voiceError, {}), m_clock.steadyMs()));
    emit attentionWanted();
}

/// Comes behind what the page makes of it.
void StatusFeed::onVoiceError(const QString &error)
{
    m_voiceError = {error, m_clock.steadyMs()};
    if (m_from.voice.attemptFailed())
        m_status.voiceFailed(shownReason(error));
}

void StatusFeed::onSimulatorFailed(const QString &message)
{
    if (!m_from.dashboard.simulatorConnected())
        m_status.simulatorFailed(message);
}

} // namespace tarvo::ui
