#include "ui/OverviewFeed.h"

#include "manager/NetworkManager.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/PilotOverview.h"
#include "ui/viewmodel/ServerPageViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

#include <chrono>

namespace tarvo::ui {

using manager::NetworkManager;

namespace {
using namespace std::chrono_literals;
constexpr auto lookEvery = 10s;
} // namespace

OverviewFeed::OverviewFeed(std::shared_ptr<NetworkManager> network, const ServerPageViewModel &server,
                           const SimulatorPageViewModel &simulator, MessagesPageViewModel &messages,
                           PilotOverview &overview, QObject *parent, const common::Clock &clock)
    : QObject(parent),
      m_network(std::move(network)),
      m_server(server),
      m_simulator(simulator),
      m_messages(messages),
      m_overview(overview),
      m_clock(clock)
{
    m_minuteTimer.setInterval(lookEvery);
    connect(&m_minuteTimer, &QTimer::timeout, this, &OverviewFeed::show);
    connect(m_network.get(), &NetworkManager::networkConnected, this, [this] {
        m_connectedAt = m_clock.steadyMs();
        m_minuteTimer.start();
        show();
    });
    connect(m_network.get(), &NetworkManager::networkDisconnected, this, [this] {
        m_connectedAt.reset();
        m_minuteTimer.stop();
        show();
    });
    connect(&m_server, &ServerPageViewModel::formChanged, this, &OverviewFeed::show);
    connect(&m_simulator, &SimulatorPageViewModel::stateChanged, this, &OverviewFeed::show);
    connect(&m_simulator, &SimulatorPageViewModel::dataChanged, this, &OverviewFeed::show);
    connect(&m_messages, &MessagesPageViewModel::nearbyClientsChanged, this, &OverviewFeed::show);
    show();
}

void OverviewFeed::show()
{
    m_overview.show(summaryOf({.callsign = m_connectedAt ? m_network->connectInfo().callsign : m_server.callsign(),
                               .typeCode = m_connectedAt ? m_network->connectInfo().typeCode : m_server.typeCode(),
                               .observer = m_connectedAt ? m_network->connectInfo().observer : m_server.observerMode(),
                               .simulator = m_simulator.simulatorDisplayName(),
                               .live = m_simulator.simulatorConnected(),
                               .com1 = m_simulator.com1Frequency(),
                               .com2 = m_simulator.com2Frequency(),
                               .transponder = m_simulator.transponderCode(),
                               .connectedForMs = m_connectedAt ? m_clock.steadyMs() - *m_connectedAt : -1},
                              m_messages.stationList()->rows()));
}

} // namespace tarvo::ui
