// The simulator: which one it is, what it says, and whether its data are alive.

#include "manager/NetworkManager.h"

namespace tarvo::manager {

using simulator::Simulator;

void NetworkManager::setSimulator(std::shared_ptr<Simulator> simulator)
{
    if (!simulator)
        return;
    const std::shared_ptr<Simulator> previous = m_simulator; // lives until all have let go of it
    releaseSimulator();
    m_simulator = std::move(simulator);
    connectSimulatorState(*m_simulator);
    connectSimulatorForwards(*m_simulator);
    if (!m_dataWatchdog.isActive())
        m_dataWatchdog.start();
    clearOwnAircraft();
    announceSimulatorState();
    moveTrafficToNewSimulator();
    emit simulatorChanged();

    QTimer::singleShot(0, this, [this, installed = std::weak_ptr<Simulator>(m_simulator)] {
        const std::shared_ptr<Simulator> current = installed.lock();
        if (current && current == m_simulator)
            current->reconnectSimulator();
    });
}

void NetworkManager::releaseSimulator()
{
    if (const std::shared_ptr<Simulator> simulator = m_simulator) {
        simulator->removeAllAircraft();
        simulator->clearControllers();
    }
    m_simulatorConnections.clear();
}

void NetworkManager::connectSimulatorState(const Simulator &simulator)
{
    m_simulatorConnections.add({
        connect(&simulator, &Simulator::userAircraftDataChanged, this, &NetworkManager::onUserAircraftData),
        connect(&simulator, &Simulator::userAircraftConfigDataChanged, this, &NetworkManager::onUserAircraftConfigData),
        connect(&simulator, &Simulator::radioStackStateChanged, this, &NetworkManager::onRadioStackState),
        connect(&simulator, &Simulator::requestStationInfo, this, &NetworkManager::requestControllerAtis),
        connect(&simulator, &Simulator::radioMessageSent, this, &NetworkManager::sendRadioMessage),
        connect(&simulator, &Simulator::privateMessageSent, this, &NetworkManager::sendPrivateMessage),
        connect(&simulator, &Simulator::forceDisconnect, this, &NetworkManager::onForceDisconnect),
        connect(&simulator, &Simulator::simConnectionStateChanged, this, &NetworkManager::onSimConnectionState),
        connect(&simulator, &Simulator::simPausedStateChanged, this, &NetworkManager::onSimPausedState),
    });
}

void NetworkManager::connectSimulatorForwards(const Simulator &simulator)
{
    m_simulatorConnections.add({
        connect(&simulator, &Simulator::simConnectionFailed, this, &NetworkManager::simulatorConnectionFailed),
        connect(&simulator, &Simulator::pluginVersionChecked, this, &NetworkManager::simulatorPluginStatusUpdated),
        connect(&simulator, &Simulator::cslValidationChecked, this, &NetworkManager::simulatorCslStatusUpdated),
        connect(&simulator, &Simulator::trafficMappingStatusChanged, this,
                &NetworkManager::simulatorTrafficMappingStatusUpdated),
        connect(&simulator, &Simulator::xplaneVersionUpdated, this, &NetworkManager::simulatorXPlaneVersionUpdated),
        connect(&simulator, &Simulator::trafficSnapshotChanged, this, &NetworkManager::simulatorTrafficSnapshotUpdated),
    });
}

void NetworkManager::clearOwnAircraft()
{
    m_own = {};
    m_dataWatch = {};
    m_transmitFrequencies.clear();
}

void NetworkManager::reconnectSimulator()
{
    if (const std::shared_ptr<Simulator> simulator = m_simulator)
        simulator->reconnectSimulator();
}

void NetworkManager::onUserAircraftData(const model::UserAircraftData &data)
{
    if (data == m_own.aircraft)
        return;
    m_own.aircraft = data;
    if (m_dataWatch.addSample(data, m_clock.wallMs()))
        emit simulatorConnectionStateChanged(true);
    announceSimulatorData();
}

void NetworkManager::onUserAircraftConfigData(const model::UserAircraftConfigData &data)
{
    if (data == m_own.config)
        return;
    m_own.config = data;
    announceSimulatorData();
}

void NetworkManager::onRadioStackState(const model::RadioStackState &state)
{
    if (state == m_own.radio)
        return;
    m_own.radio = state;
    m_transmitFrequencies.clear();
    if (state.com1TransmitEnabled)
        m_transmitFrequencies.append(state.com1Frequency);
    if (state.com2TransmitEnabled)
        m_transmitFrequencies.append(state.com2Frequency);
    emit radioStatesUpdate(m_own.radio);
}

void NetworkManager::onSimConnectionState(bool connected)
{
    if (connected)
        m_dataWatch.simulatorConnected();
    else
        m_dataWatch.simulatorDisconnected();
    announceSimulatorState();
}

void NetworkManager::onSimPausedState(bool paused)
{
    if (paused == m_own.simPaused)
        return;
    m_own.simPaused = paused;
    announceSimulatorData();
}

void NetworkManager::onWatchdog()
{
    if (m_dataWatch.expire(m_clock.wallMs()))
        announceSimulatorState();
}

void NetworkManager::announceSimulatorState()
{
    emit simulatorConnectionStateChanged(m_dataWatch.isValid());
    announceSimulatorData();
}

void NetworkManager::announceSimulatorData()
{
    SimulatorData data = m_own;
    data.simConnected = m_dataWatch.isValid();
    emit simulatorDataUpdated(data);
}

} // namespace tarvo::manager
