#include "manager/UserAircraftManager.h"

#include "manager/NetworkManager.h"
#include "manager/Plausible.h"
#include "simulator/Simulator.h"

#include <utility>

namespace tarvo::manager {

using simulator::Simulator;

namespace {
constexpr int tokenIntervalMs = 5000;
}

UserAircraftManager::UserAircraftManager(std::shared_ptr<NetworkManager> network, QObject *parent)
    : QObject(parent), m_network(std::move(network)), m_budgetTimer(this)
{
    m_budgetTimer.setObjectName(QStringLiteral("configurationBudgetTimer"));
    connect(&m_budgetTimer, &QTimer::timeout, this, [this] { m_budget.add(); });
    connect(m_network.get(), &NetworkManager::aircraftConfigurationInfoReceived, this,
            &UserAircraftManager::onAircraftConfigurationInfo);
    connect(m_network.get(), &NetworkManager::simulatorConnectionStateChanged, this, &UserAircraftManager::onDataValid);
    connect(m_network.get(), &NetworkManager::simulatorChanged, this, &UserAircraftManager::onSimulatorChanged);
    onSimulatorChanged();
    m_budgetTimer.start(tokenIntervalMs);
}

void UserAircraftManager::onSimulatorChanged()
{
    m_simulatorConnections.clear();
    m_simulator = m_network->simulator();
    // What was known of the earlier simulator says nothing about this one, which may well start in the air.
    m_simConnected = false;
    m_sampleSeen = false;
    m_radio = {};
    m_held = m_lastSent.has_value();
    if (!m_simulator)
        return;
    m_simulatorConnections.add({
        connect(m_simulator.get(), &Simulator::userAircraftConfigDataChanged, this,
                &UserAircraftManager::onUserAircraftConfigData),
        connect(m_simulator.get(), &Simulator::radioStackStateChanged, this, &UserAircraftManager::onRadioStackState),
        connect(m_simulator.get(), &Simulator::simConnectionStateChanged, this,
                &UserAircraftManager::onSimConnectionState),
        connect(m_simulator.get(), &Simulator::restarted, this, [this] { m_sampleSeen = false; }),
    });
}

void UserAircraftManager::onUserAircraftConfigData(const model::UserAircraftConfigData &data)
{
    m_newest = plausible(data, m_newest);
    if (!m_held)
        tellConfiguration();
    switchModeCOn();
}

/// The session's word: live data flow, with a plugin or without.
void UserAircraftManager::onDataValid(bool valid)
{
    if (valid && std::exchange(m_held, false))
        tellConfiguration();
}

void UserAircraftManager::tellConfiguration()
{
    m_config = m_newest;
    sendChanges();
}

void UserAircraftManager::sendChanges()
{
    const model::AircraftConfiguration now = configurationOf(m_config);
    if (!m_lastSent) {
        m_lastSent = now; // the first sample is what later ones are compared with
        return;
    }
    // A change that finds no token stays unsent; the next sample compares again.
    if (m_budget.isEmpty() || !model::differs(*m_lastSent, now))
        return;
    m_network->sendConfigurationToAll(model::incrementOf(*m_lastSent, now));
    m_lastSent = now;
    m_budget.take();
}

void UserAircraftManager::switchModeCOn()
{
    const bool inAir = !m_newest.onGround;
    const bool takenOff = inAir && !m_airborne;
    // Airborne is noted on every sample. Only the toggle needs an earlier one: a first sample in the air is no
    // take-off.
    const bool toggles = m_simConnected && m_sampleSeen && takenOff && !m_radio.squawkingModeC;
    m_airborne = inAir;
    m_sampleSeen = true;
    if (const std::shared_ptr<Simulator> simulator = m_simulator; simulator && toggles)
        simulator->transponderModeToggle(); // last: it may replace the simulator
}

void UserAircraftManager::onRadioStackState(const model::RadioStackState &state)
{
    m_radio = state;
}

void UserAircraftManager::onSimConnectionState(bool connected)
{
    m_simConnected = connected;
    if (connected)
        return;
    m_sampleSeen = false;
    m_held = m_lastSent.has_value();
}

void UserAircraftManager::onAircraftConfigurationInfo(const QString &from, const QString &json)
{
    if (!model::AircraftConfigurationMessage::parse(json).requestFull.value_or(false))
        return;
    model::AircraftConfiguration full = configurationOf(m_config);
    full.isFullData = true;
    m_network->sendConfiguration(from, full);
}

} // namespace tarvo::manager
