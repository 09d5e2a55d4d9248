#include "ui/StatusFeed.h"

#include "manager/NetworkManager.h"
#include "ui/viewmodel/DashboardViewModel.h"
#include "ui/viewmodel/ServerPageViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"
#include "ui/viewmodel/StatusViewModel.h"
#include "ui/viewmodel/VoiceServiceViewModel.h"

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
            [this] { m_status.setNetwork(m_from.dashboard.serverConnected(), m_from.dashboard.serverStatusText()); });
    connect(&m_from.dashboard, &DashboardViewModel::simulatorStateChanged, this, &StatusFeed::showSimulator);
    connect(&m_from.simulator, &SimulatorPageViewModel::stateChanged, this,
            [this] { m_from.dashboard.setSimulatorFailure(m_from.simulator.simulatorFailureText()); });
    connect(&m_from.voice, &VoiceServiceViewModel::connectStateChanged, this,
            [this] { m_status.setVoice(m_from.voice.connected(), m_from.voice.connectionStateText()); });
}

void StatusFeed::connectWishes()
{
    const auto leaves = [this] { m_leaving = true; };
    connect(&m_from.dashboard, &DashboardViewModel::serverDisconnectRequest, this, leaves);
    connect(&m_from.server, &ServerPageViewModel::disconnectRequested, this, leaves);
    connect(&m_from.dashboard, &DashboardViewModel::serverConnectRequest, this, &StatusFeed::networkBegins);
    connect(&m_from.server, &ServerPageViewModel::connectRequested, this, &StatusFeed::networkBegins);
    const auto wishes = [this] {
        m_simulatorWish = true;
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
    connect(network, &NetworkManager::networkConnected, this, [this] { m_error.clear(); });
    connect(network, &NetworkManager::networkDisconnected, this, &StatusFeed::onNetworkEnded);
    connect(network, &NetworkManager::simulatorConnectionFailed, this, &StatusFeed::onSimulatorFailed);
    connect(network, &NetworkManager::privateMessageReceived, this, &StatusFeed::attentionWanted);
    connect(network, &NetworkManager::selcalAlertReceived, this, &StatusFeed::attentionWanted);
}

void StatusFeed::networkBegins()
{
    m_leaving = false;
    m_error.clear();
    m_from.server.setFailure({});
    m_status.forgetNetwork();
}

void StatusFeed::onNotification(const QString &message, MessageType type)
{
    if (type != MessageType::Error)
        return;
    m_error = tellingError(m_error, message);
    m_errorAt = m_clock.steadyMs();
    if (!m_network->isBusy()) // a refusal: no session has begun that could end
        failNetwork(shownReason(message));
}

void StatusFeed::onNetworkEnded()
{
    const bool wanted = std::exchange(m_leaving, false);
    const QString error = std::exchange(m_error, {});
    if (wanted)
        return;
    failNetwork(reasonOfEnd(error, m_errorAt, m_clock.steadyMs()));
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
    m_status.setSimulator(connected, m_from.dashboard.simulatorStatusText());
    const bool lost = std::exchange(m_simulatorWas, connected) && !connected;
    if (connected)
        m_simulatorWish = false;
    if (!lost)
        return;
    if (m_simulatorWish || !m_from.dashboard.serverConnected()) {
        m_status.forgetSimulator();
        return;
    }
    m_status.simulatorFailed(tr("模拟器不再发送数据。"));
    emit attentionWanted();
}

void StatusFeed::onSimulatorFailed(const QString &message)
{
    if (!m_from.dashboard.simulatorConnected())
        m_status.simulatorFailed(message);
}

} // namespace tarvo::ui
