#include "traffic/Pages.h"

#include "common/Units.h"
#include "manager/NetworkManager.h"

namespace tarvo::bench {

using manager::NetworkManager;
using ui::SimulatorPageViewModel;

Pages::Pages(std::shared_ptr<NetworkManager> network, std::shared_ptr<manager::ControllerManager> controllers,
             network::SwiftAircraftIcaoService &icao)
    : m_network(std::move(network)),
      m_server(icao),
      m_simulatorFeed(m_network, m_simulator),
      m_messagesFeed(m_network, std::move(controllers), m_messages, m_sounds)
{
    m_simulator.setMode(QStringLiteral("XPLANE"));
    feed();
    read();
}

/// What the main window does by itself.
void Pages::feed()
{
    const NetworkManager *network = m_network.get();
    QObject::connect(network, &NetworkManager::simulatorConnectionStateChanged, &m_context, [this](bool connected) {
        m_dashboard.setSimulatorState(connected, {});
        m_simulator.setSimulatorState(connected, {});
    });
    QObject::connect(network, &NetworkManager::simulatorDataUpdated, &m_context,
                     [this](const manager::SimulatorData &sample) {
                         const model::UserAircraftData &own = sample.aircraft;
                         m_dashboard.setFlightData(own.latitude, own.longitude, own.altitudeMslM * common::feetPerMetre,
                                                   own.heading, own.groundSpeed);
                     });
    QObject::connect(network, &NetworkManager::notificationPosted, &m_context,
                     [this](const QString &message) { m_server.addRecentEvent(QStringLiteral("通知"), message, {}); });
}

void Pages::read()
{
    QObject::connect(&m_simulator, &SimulatorPageViewModel::trafficChanged, &m_context,
                     [this] { m_shown += m_simulator.plotContacts().size() + m_simulator.trafficSummary().size(); });
}

} // namespace tarvo::bench
