#pragma once

#include "ServiceEndpoints.h"
#include "common/Clock.h"
#include "common/MessageType.h"
#include "model/AircraftConfiguration.h"
#include "model/ConnectInfo.h"
#include "model/RadioMessageReceived.h"
#include "simulator/Simulator.h"

#include <QObject>
#include <QVariantList>

#include <memory>

namespace tarvo {
class AppConfig;
}
namespace tarvo::network {
class ApiService;
class SwiftAircraftIcaoService;
} // namespace tarvo::network

namespace tarvo::manager {

/// The own aircraft's whole state, as the pages show it.
struct SimulatorData
{
    bool simConnected = false; ///< connected and delivering live samples
    model::UserAircraftData aircraft;
    model::UserAircraftConfigData config;
    model::RadioStackState radio;
    bool simPaused = false;
};

/// Owns one FSD session: validates the connect request, drives the login, keeps the position timers, watches the
/// simulator's data for life, writes the network log, and turns every event of the session into a signal and a call on
/// the current Simulator. Main thread only.
class NetworkManager : public QObject
{
    Q_OBJECT

public:
    NetworkManager(AppConfig &config, network::ApiService &api, network::SwiftAircraftIcaoService &icao,
                   const ServiceEndpoints &endpoints = {}, const common::Clock &clock = common::systemClock(),
                   QObject *parent = nullptr);
    ~NetworkManager() override;

    /// Installs a backend in place of the earlier one, which is told to remove all aircraft and is released. An empty
    /// pointer does nothing.
    void setSimulator(std::shared_ptr<simulator::Simulator> simulator);
    /// The current backend; may be empty.
    std::shared_ptr<simulator::Simulator> simulator() const;

    /// True while connectToNetwork() is on the stack: it runs the event loop during a name look-up, and until it has
    /// returned this object must not be destroyed.
    bool isResolving() const;

    /// Under what name the current or the last connection ran.
    const model::ConnectInfo &connectInfo() const;

    /// Sends an aircraft configuration to all, or to one callsign. Dropped when not connected.
    void sendConfigurationToAll(const model::AircraftConfiguration &configuration);
    void sendConfiguration(const QString &to, const model::AircraftConfiguration &configuration);

public slots:
    /// Starts a connection. Returns true when the TCP connect was started; a refusal has been posted as a notification.
    bool connectToNetwork(const QString &callsign, const QString &typeCode, const QString &selcal, bool observer);
    /// The user's wish to leave.
    void disconnectFromNetwork();
    void reconnectSimulator();

signals:
    void networkConnected(const QString &callsign);
    void networkDisconnected(bool forced);
    void notificationPosted(const QString &message, tarvo::common::MessageType type);
    void serverMessageReceived(const QString &message);
    void aircraftConfigurationInfoReceived(const QString &from, const QString &json);
    void capabilitiesRequestReceived(const QString &from);
    void simulatorChanged();
    void simulatorConnectionStateChanged(bool connected);
    void simulatorConnectionFailed(const QString &message);
    void simulatorXPlaneVersionUpdated(int version);
    void simulatorPluginStatusUpdated(bool valid);
    void simulatorCslStatusUpdated(bool valid);
    void simulatorTrafficMappingStatusUpdated(const QString &status);
    void radioStatesUpdate(const tarvo::model::RadioStackState &state);
    /// After every change of aircraft, configuration or pause, of the simulator's state, and when its data dry up.
    void simulatorDataUpdated(const tarvo::manager::SimulatorData &data);
    void simulatorTrafficSnapshotUpdated(const QVariantList &contacts);
};

} // namespace tarvo::manager
