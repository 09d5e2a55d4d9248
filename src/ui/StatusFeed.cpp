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
    connect(network, &NetworkManager::simulatorConnectionStateChanged, this, &StatusFeed::onSimulatorState);
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

void StatusFeed::networkLeaves()
{
    m_networkEndWished = true;
}

void StatusFeed::onNotification(const QString &message, MessageType type)
{
    if (type != MessageType::Error)
        return;
    m_error = tellingError(m_error, {message, m_clock.steadyMs()});
    if (!m_network->isBusy()) // a refusal: no session has begun that could end
        failNetwork(shownReason(message));
}

void StatusFeed::onNetworkEnded()
{
    m_voiceEndExpected = true;
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
    if (!ended)
        return;
    if (std::exchange(m_simulatorEndWished, false))
        m_status.forgetSimulator();
    else
        loseSimulator();
}

void StatusFeed::loseSimulator()
{
    const bool isMissed = m_from.dashboard.serverConnected();
    if (!isMissed)
        m_status.forgetSimulator(); // that it was there: then it is red, but nobody is disturbed
    m_status.simulatorFailed(tr("模拟器不再发送数据。"));
    if (isMissed)
        emit attentionWanted();
}

void StatusFeed::showVoice()
{
    const VoiceServiceViewModel &voice = m_from.voice;
    m_status.setVoice(voice.connected(), voice.linkState());
    const bool ended = std::exchange(m_voiceWas, voice.connected()) && !voice.connected();
    if (voice.isConnecting()) {
        m_voiceEndExpected = false;
        m_voiceError = {};
        m_from.voice.setFailure({});
        m_status.forgetVoice();
        return;
    }
    if (!ended || std::exchange(m_voiceEndExpected, false))
        return;
    failVoice(reasonOfEnd(std::exchange(m_voiceError, {}), m_clock.steadyMs()));
    emit attentionWanted();
}

/// Comes behind what the page makes of it.
void StatusFeed::onVoiceError(const QString &error)
{
    m_voiceError = {error, m_clock.steadyMs()};
    if (m_from.voice.attemptFailed())
        failVoice(shownReason(error));
}

void StatusFeed::failVoice(const QString &reason)
{
    m_from.voice.setFailure(reason);
    m_status.voiceFailed(reason);
}

/// Whichever way the attempt ends, what comes after it wasn't wished; if the data flowed all along, no page hears of
/// it.
void StatusFeed::onSimulatorState(bool connected)
{
    if (connected)
        m_simulatorEndWished = false;
}

void StatusFeed::onSimulatorFailed(const QString &message)
{
    m_simulatorEndWished = false;
    if (!m_from.dashboard.simulatorConnected())
        m_status.simulatorFailed(message);
}

} // namespace tarvo::ui
