#pragma once

#include "ServiceEndpoints.h"
#include "common/Clock.h"
#include "common/MessageType.h"
#include "manager/ConnectionList.h"
#include "manager/SimulatorData.h"
#include "model/AircraftVisualState.h"
#include "model/ConnectInfo.h"
#include "model/RadioMessageReceived.h"
#include "model/RemoteAircraft.h"
#include "model/VelocityVector.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantList>

#include <memory>
#include <optional>

namespace tarvo {
class AppConfig;
}
namespace tarvo::fsd::pdu {
struct ClientQueryResponse;
struct ProtocolError;
struct SendFast;
} // namespace tarvo::fsd::pdu
namespace tarvo::network {
class ApiService;
class SwiftAircraftIcaoService;
} // namespace tarvo::network
namespace tarvo::simulator {
class Simulator;
}
namespace tarvo::voice {
class SoundThread;
class VoiceClient;
} // namespace tarvo::voice

namespace tarvo::manager {

class Login;
class OwnAircraft;
class PeerQueries;
class PositionReporter;
class RemoteTraffic;
class SessionLifecycle;
class SessionLog;
class StationReports;
class TextTraffic;
class VoiceRadios;
struct SessionContext;

/// Owns one FSD session: validates the connect request, writes the network log, and turns every event of the session
/// into a signal and a call on the current Simulator. Its parts do the rest: SessionLifecycle, Login, OwnAircraft,
/// RemoteTraffic, TextTraffic, StationReports, PeerQueries, VoiceRadios. Main thread only.
class NetworkManager : public QObject
{
    Q_OBJECT

public:
    /// `config`, `api`, `icao` and `clock` must outlive it; `endpoints` is copied. `sound`: the program's; without one
    /// it makes its own.
    NetworkManager(AppConfig &config, network::ApiService &api, network::SwiftAircraftIcaoService &icao,
                   const ServiceEndpoints &endpoints = {}, const common::Clock &clock = common::systemClock(),
                   std::shared_ptr<voice::SoundThread> sound = nullptr, QObject *parent = nullptr);
    ~NetworkManager() override;

    /// Installs a backend in place of the earlier one, which is told to remove all aircraft and is released. An empty
    /// pointer does nothing.
    void setSimulator(std::shared_ptr<simulator::Simulator> simulator);
    /// The current backend; may be empty.
    std::shared_ptr<simulator::Simulator> simulator() const;

    /// True while connectToNetwork() is on the stack. It may look a name up, and handles events meanwhile: this object
    /// must not be destroyed before it has returned.
    bool isResolving() const;

    /// Connected, or on the way there or back.
    bool isBusy() const;

    /// Under what name the current or the last connection ran.
    const model::ConnectInfo &connectInfo() const;

    /// The voice session. It knows the radios; the end of an FSD session ends it too.
    voice::VoiceClient &voiceClient();

    /// The frequencies that a radio message goes out on, in kHz.
    QList<uint> transmitFrequencies() const;

    /// Sends an aircraft configuration to all, or to one callsign. Dropped when not connected.
    void sendConfigurationToAll(const model::AircraftConfiguration &configuration);
    void sendConfiguration(const QString &to, const model::AircraftConfiguration &configuration);

    // Questions to the other clients and about them; each is dropped when not connected.

    /// What the callsign's client can do; capabilitiesResponseReceived answers.
    void requestCapabilities(const QString &callsign);
    /// Tells the callsign what this client can do, unasked.
    void sendOwnCapabilities(const QString &callsign);
    /// Model and filed type of the callsign's aircraft; aircraftInfoReceived answers, once for each.
    void requestPlaneInfoAndFlightPlan(const QString &callsign);
    /// The callsign's whole aircraft configuration; aircraftConfigurationInfoReceived answers.
    void requestFullConfiguration(const QString &callsign);
    /// Whether the callsign is a station that the server knows; isValidAtcReceived answers if so.
    void requestValidAtc(const QString &callsign);

    /// What is known of the aircraft of that upper-case callsign.
    std::optional<model::RemoteAircraft> remoteAircraft(const QString &callsign) const;
    /// True when anything is known of it; cheaper than its record.
    bool knowsAircraft(const QString &callsign) const;
    /// All other aircraft, in no order.
    QList<model::RemoteAircraft> remoteAircraft() const;

public slots:
    /// Starts a connection. Returns true while it is under way; why it isn't has been posted as a notification. Refused
    /// until everybody has heard of the last one's end, networkDisconnected() included.
    bool connectToNetwork(const QString &callsign, const QString &typeCode, const QString &selcal, bool observer);
    /// The user's wish to leave.
    void disconnectFromNetwork();
    /// Tells the simulator, if there is one, to look for its link anew.
    void reconnectSimulator();
    /// Sends text on the radios that transmit; nothing when none does. Without a connection the text is not sent, but
    /// shown and raised as sent all the same, as by the two below.
    void sendRadioMessage(const QString &message);
    /// Sends text to a callsign, in any case.
    void sendPrivateMessage(const QString &to, const QString &message);
    /// Sends text to the supervisors.
    void sendWallop(const QString &message);
    /// Asks a client for its pilot's name.
    void requestRealName(const QString &callsign);
    /// Asks a station for its ATIS; controllerAtisReceived answers.
    void requestControllerAtis(const QString &callsign);

signals:
    // A callsign stands as the wire has it, in any case, where nothing else is said.

    /// The server has accepted the login; once for each connection. `callsign`: the own one, upper-case.
    void networkConnected(const QString &callsign);
    /// The connection is over. `forced`: not by the pilot's wish, but by the server, the simulator or a refused token;
    /// a connection that breaks is not forced.
    void networkDisconnected(bool forced);
    /// A text for the pilot.
    void notificationPosted(const QString &message, tarvo::common::MessageType type);
    /// A station has left; upper-case.
    void controllerDeleted(const QString &from);
    /// A pilot has left; upper-case. Raised for one that was never seen, too, and after the simulator has been told.
    void pilotDeleted(const QString &from);
    /// The server has deleted the own callsign: nothing may be transmitted any more.
    void disableVoiceTransmit();
    // What is received is raised before the simulator shows it.
    void serverMessageReceived(const QString &message);
    void privateMessageReceived(const QString &from, const QString &message);
    /// Raised behind the line and the simulator's display. `to`: as it was given.
    void privateMessageSent(const QString &to, const QString &message);
    /// `from`: upper-case.
    void broadcastMessageReceived(const QString &from, const QString &message);
    /// Raised behind the line and the simulator's display. `frequencies`: kHz.
    void radioMessageSent(const QString &message, const QList<uint> &frequencies);
    /// Raised behind the line and before the simulator shows it.
    void wallopSent(const QString &message);
    void radioMessageReceived(const tarvo::network::RadioMessageReceived &args);
    /// The own SELCAL code was called. `from`: upper-case; `frequencies`: kHz, those it was heard on.
    void selcalAlertReceived(const QString &from, const QList<uint> &frequencies);
    /// `json`: a configuration message as received, whether it can be read or not.
    void aircraftConfigurationInfoReceived(const QString &from, const QString &json);
    /// Raised before the answer goes out; never for the server's question.
    void capabilitiesRequestReceived(const QString &from);
    /// `data`: the answer's fields joined by ":", such as "VERSION=1:ACCONFIG=1".
    void capabilitiesResponseReceived(const QString &from, const QString &data);
    /// A station's position report. `frequency`: kHz, the first that it names; `lat`, `lon`: degrees.
    void controllerUpdateReceived(const QString &from, quint32 frequency, double lat, double lon);
    /// The server has confirmed the station; upper-case.
    void isValidAtcReceived(const QString &from);
    /// `name`: as told, of any length.
    void realNameReceived(const QString &from, const QString &name);
    /// The lines of a station's ATIS that was asked for. `from`: upper-case.
    void controllerAtisReceived(const QString &from, const QStringList &atis);
    /// `from`: upper-case, as below; `visualState`: degrees, metres; `groundSpeed`: knots.
    void slowPositionUpdateReceived(const QString &from, const tarvo::model::AircraftVisualState &visualState,
                                    double groundSpeed);
    /// Vectors as the simulator takes them; both zero for an aircraft that has stopped.
    void fastPositionUpdateReceived(const QString &from, const tarvo::model::AircraftVisualState &visualState,
                                    const tarvo::model::VelocityVector &positionalVelocityVector,
                                    const tarvo::model::VelocityVector &rotationalVelocityVector);
    /// Type and airline of an aircraft, as far as they are known by now.
    void aircraftInfoReceived(const QString &from, const QString &equipment, const QString &airline);
    /// The server silences the own voice, or no longer.
    void muteReceived(bool mute);
    /// Another simulator is in place, and has been given the traffic.
    void simulatorChanged();
    /// `connected`: to a simulator that says so, or that delivers live data.
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

private:
    void makeParts();
    void connectLife();
    void connectLine();
    void connectMessages();
    void connectOwnAircraft();
    void connectTexts();
    void connectTraffic();
    void connectVoice();

    QString normalizedType(const QString &typeCode) const;
    void onNetworkError(const QString &error);

    // What the server says that no part handles alone
    void onClientQueryResponse(const fsd::pdu::ClientQueryResponse &pdu);
    void onSendFast(const fsd::pdu::SendFast &pdu);
    void onProtocolError(const fsd::pdu::ProtocolError &pdu);

    // The simulator
    void releaseSimulator();
    void connectSimulator();
    void onSimulatorRestarted();
    void letReplacedGo();

    network::SwiftAircraftIcaoService &m_icao;
    const QString m_fsdHost;
    const quint16 m_fsdPort;

    const std::unique_ptr<SessionContext> m_session;
    QList<std::shared_ptr<simulator::Simulator>> m_replaced; ///< which may still be on the stack
    ConnectionList m_simulatorConnections;
    // Children of this object besides, so that they go with it to a thread and are found; these pointers let them end
    // before the session.
    std::unique_ptr<SessionLifecycle> m_life;
    std::unique_ptr<OwnAircraft> m_own;
    std::unique_ptr<PositionReporter> m_reporter;
    std::unique_ptr<Login> m_login;
    std::unique_ptr<RemoteTraffic> m_traffic;
    std::unique_ptr<TextTraffic> m_texts;
    std::unique_ptr<StationReports> m_stations;
    std::unique_ptr<PeerQueries> m_queries;
    std::unique_ptr<VoiceRadios> m_voice;
    std::unique_ptr<SessionLog> m_log;
};

} // namespace tarvo::manager
