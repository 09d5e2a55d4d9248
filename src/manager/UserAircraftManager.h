#pragma once

#include "manager/ConnectionList.h"
#include "manager/OwnConfiguration.h"
#include "model/AircraftConfiguration.h"
#include "model/RadioStackState.h"
#include "model/UserAircraftConfigData.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

namespace tarvo::simulator {
class Simulator;
}

namespace tarvo::manager {

class NetworkManager;

/// Tells other pilots what changes on the own aircraft, at most ten messages in a burst and twelve a minute after that,
/// answers those who ask for the whole configuration, and switches the transponder to mode C at take-off. Main thread
/// only.
class UserAircraftManager : public QObject
{
    Q_OBJECT

public:
    explicit UserAircraftManager(std::shared_ptr<NetworkManager> network, QObject *parent = nullptr);

private:
    void onSimulatorChanged();
    void onUserAircraftConfigData(const model::UserAircraftConfigData &data);
    void onRadioStackState(const model::RadioStackState &state);
    void onSimConnectionState(bool connected);
    void onDataValid(bool valid);
    void onAircraftConfigurationInfo(const QString &from, const QString &json);
    void tellConfiguration();
    void sendChanges();
    void switchModeCOn();

    std::shared_ptr<NetworkManager> m_network;
    std::shared_ptr<simulator::Simulator> m_simulator; ///< may be empty
    ConnectionList m_simulatorConnections;
    QTimer m_budgetTimer;
    ConfigurationBudget m_budget;
    model::UserAircraftConfigData m_newest; ///< as the simulator tells it
    model::UserAircraftConfigData m_config; ///< as others are told it; while the simulator is lost, what it told last
    model::RadioStackState m_radio;
    std::optional<model::AircraftConfiguration> m_lastSent; ///< kept from session to session: only changes are sent
    bool m_held = false; ///< the simulator is lost: it tells a cleared record now, which nobody else is told
    bool m_airborne = false;
    bool m_simConnected = false;
    bool m_sampleSeen = false;
};

} // namespace tarvo::manager
