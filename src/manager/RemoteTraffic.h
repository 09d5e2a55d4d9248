#pragma once

#include "manager/AircraftTypeRules.h"
#include "manager/ConnectionList.h"
#include "manager/RemoteAircraftTable.h"
#include "manager/RequestPace.h"
#include "model/RemoteAircraft.h"
#include "model/VelocityVector.h"

#include <QObject>

#include <memory>
#include <optional>

namespace tarvo::fsd::pdu {
struct ClientQueryResponse;
struct DeletePilot;
struct FastPilotPosition;
struct FlightPlan;
struct PilotPosition;
struct PlaneInfoResponse;
} // namespace tarvo::fsd::pdu
namespace tarvo::network {
class SwiftAircraftIcaoService;
}
namespace tarvo::simulator {
class Simulator;
}

namespace tarvo::manager {

struct SessionContext;

/// The other aircraft: what is known of them, and how they get into the simulator. NetworkManager raises its signals
/// as its own. Main thread only.
///
/// Whatever is sent, raised or told to the simulator may come back and end the session, forget an aircraft or replace
/// the simulator. So nothing of the table is kept across such a call, and what follows looks whether it still holds.
class RemoteTraffic : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive it.
    RemoteTraffic(SessionContext &session, const network::SwiftAircraftIcaoService &icao, QObject *parent = nullptr);

    const RemoteAircraftTable &table() const { return m_table; }

    void onPilotPosition(const fsd::pdu::PilotPosition &pdu);
    void onFastPilotPosition(const fsd::pdu::FastPilotPosition &pdu);
    void onDeletePilot(const fsd::pdu::DeletePilot &pdu);
    void onPlaneInfoResponse(const fsd::pdu::PlaneInfoResponse &pdu);
    void onFlightPlan(const fsd::pdu::FlightPlan &pdu);
    void onFlightPlanAnswer(const fsd::pdu::ClientQueryResponse &pdu);
    /// The server has no flight plan of that callsign.
    void onNoFlightPlan(const QString &callsign);
    void onConfiguration(const QString &from, const QString &json);

    /// Asks the callsign for its model, and the server for its flight plan.
    void requestPlaneInfoAndFlightPlan(const QString &callsign);
    /// Asks for the callsign's whole configuration.
    void requestFullConfiguration(const QString &callsign);

    /// Listens to the session's simulator, a new one.
    void listenToSimulator();
    /// Gives all aircraft to the session's simulator, which has none of them.
    void giveToSimulator();
    /// The session is over.
    void forget();

signals:
    // As NetworkManager's.
    void slowPositionUpdateReceived(const QString &from, const tarvo::model::AircraftVisualState &visualState,
                                    double groundSpeed);
    void fastPositionUpdateReceived(const QString &from, const tarvo::model::AircraftVisualState &visualState,
                                    const tarvo::model::VelocityVector &positionalVelocityVector,
                                    const tarvo::model::VelocityVector &rotationalVelocityVector);
    void aircraftInfoReceived(const QString &from, const QString &equipment, const QString &airline);
    void aircraftConfigurationInfoReceived(const QString &from, const QString &json);
    void disableVoiceTransmit();
    void pilotDeleted(const QString &from);

private:
    using Record = RemoteAircraftTable::Record;

    /// What a flight plan has told of an aircraft's type.
    struct FiledType
    {
        QString typeCode;
        bool differs; ///< from what was known before
    };

    QDateTime now() const;
    Record *obtainAircraft(const QString &callsign);
    void notePosition(Record &aircraft, const model::AircraftVisualState &state);
    void prepareAircraft(Record &aircraft);
    template <class Tell>
    void tellSimulator(const QString &callsign, const Tell &tell);
    void updateConfigurationInSimulator(const QString &callsign);
    void syncAircraft(Record &aircraft);
    void addToSimulator(Record &aircraft);
    void requestConfiguration(Record &aircraft);
    void requestFlightPlanByText(const QString &callsign);
    void answerFlightPlanByText(const QString &callsign);
    std::optional<FiledType> storeFiledType(const QString &callsign, const QString &type);
    void showFiledType(const QString &callsign, const FiledType &filed);
    void storeConfiguration(const QString &callsign, const model::AircraftConfiguration &configuration);
    void announceAircraftInfo(const QString &callsign);
    void onRemovedFromSimulator(const QString &callsign);

    SessionContext &m_session;
    ConnectionList m_simulatorConnections;
    TypeNormalizer m_types;
    RemoteAircraftTable m_table;
    RequestPace m_textPace; ///< of questions for flight plans by text
};

} // namespace tarvo::manager
