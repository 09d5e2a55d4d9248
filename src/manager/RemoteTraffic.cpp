#include "manager/RemoteTraffic.h"

#include "common/Callsign.h"
#include "common/Clock.h"
#include "common/TrafficLog.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/DeletePilot.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/FlightPlan.h"
#include "fsd/pdu/PilotPosition.h"
#include "fsd/pdu/PlaneInfoRequest.h"
#include "fsd/pdu/PlaneInfoResponse.h"
#include "fsd/pdu/TextMessage.h"
#include "manager/FlightPlanAnswer.h"
#include "manager/OneLine.h"
#include "manager/RemoteAircraftUpdates.h"
#include "manager/ServerCallsign.h"
#include "manager/SessionContext.h"
#include "simulator/Simulator.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace tarvo::manager {

using common::trafficLog;
using common::trafficText;
using model::RemoteAircraft;
using simulator::Simulator;
using State = model::RemoteAircraft::State;
using namespace fsd::pdu;

namespace {

constexpr qint64 textIntervalMs = 5000;
constexpr char byNetworkManager[] = "NetworkManager"; ///< in the log, beside AircraftManager

/// One line of the log; a text from outside can't write a second one.
void logInfo(const QString &text)
{
    qInfo().noquote() << onOneLine(text);
}

void logTraffic(const char *deed, const QString &callsign, const QString &why)
{
    qCDebug(trafficLog).noquote() << trafficText(deed, callsign, byNetworkManager, why);
}

/// `told`: what the type code was made of.
void logType(const RemoteAircraft &aircraft, const QString &told)
{
    logTraffic("typed", aircraft.callsign, QStringLiteral("%1 for \"%2\"").arg(aircraft.typeCode, told));
}

} // namespace

RemoteTraffic::RemoteTraffic(SessionContext &session, const network::SwiftAircraftIcaoService &icao, QObject *parent)
    : QObject(parent), m_session(session), m_types(icao), m_textPace(textIntervalMs)
{
}

QDateTime RemoteTraffic::now() const
{
    return QDateTime::fromMSecsSinceEpoch(m_session.clock.wallMs(),
                                          Qt::UTC); // local time would cost a look-up of its zone
}

/// Null for the own aircraft and for an observer's shadow: whatever message brings them, they are echoes.
RemoteTraffic::Record *RemoteTraffic::obtainAircraft(const QString &callsign)
{
    return isOwnOrShadowed(callsign, m_session.info) ? nullptr : m_table.obtain(callsign, now());
}

// --- positions ---

void RemoteTraffic::onPilotPosition(const PilotPosition &pdu)
{
    const std::shared_ptr<Simulator> simulator = m_session.simulator;
    if (!simulator)
        return;
    const QString callsign = common::normalisedCallsign(pdu.From);
    const double groundSpeed = pdu.groundSpeed;
    const SessionMark mark = m_session.mark();
    const model::AircraftVisualState state = visualStateOf(pdu, simulator->adjustRemoteAltitude(pdu.trueAltitude));
    Record *aircraft = mark.holds() ? obtainAircraft(callsign) : nullptr;
    if (!aircraft)
        return;
    notePosition(*aircraft, state);
    aircraft->groundSpeed = groundSpeed;

    prepareAircraft(*aircraft);
    tellSimulator(callsign,
                  [&](Simulator &current, const RemoteAircraft &shown) { current.positionUpdate(shown, state); });
    if (mark.holds())
        emit slowPositionUpdateReceived(callsign, state, groundSpeed);
}

void RemoteTraffic::onFastPilotPosition(const FastPilotPosition &pdu)
{
    const std::shared_ptr<Simulator> simulator = m_session.simulator;
    if (!simulator)
        return;
    const QString callsign = common::normalisedCallsign(pdu.From);
    const Velocities velocities = velocitiesOf(pdu);
    const SessionMark mark = m_session.mark();
    const model::AircraftVisualState state = visualStateOf(pdu, simulator->adjustRemoteAltitude(pdu.trueAltitude));
    Record *aircraft = mark.holds() ? obtainAircraft(callsign) : nullptr;
    if (!aircraft)
        return;
    notePosition(*aircraft, state);
    aircraft->fastSeen = true;
    aircraft->groundSpeed = groundSpeedAfter(pdu, aircraft->groundSpeed);

    prepareAircraft(*aircraft);
    tellSimulator(callsign, [&](Simulator &current, const RemoteAircraft &shown) {
        current.fastPositionUpdate(shown, state, velocities.positional, velocities.rotational);
    });
    if (mark.holds())
        emit fastPositionUpdateReceived(callsign, state, velocities.positional, velocities.rotational);
}

void RemoteTraffic::notePosition(Record &aircraft, const model::AircraftVisualState &state)
{
    aircraft.visualState = state;
    aircraft.lastUpdate = now();
    aircraft.positionKnown = true;
}

/// Asks for the type of an aircraft that has reported, or sees to it that the simulator shows it.
void RemoteTraffic::prepareAircraft(Record &aircraft)
{
    if (!m_session.fsd.isConnected() || !aircraft.shouldAskForType(m_session.clock.steadyMs())) {
        syncAircraft(aircraft);
        return;
    }
    const QString callsign = aircraft.callsign;
    logTraffic("asked", callsign, QStringLiteral("its type is unknown"));
    requestPlaneInfoAndFlightPlan(callsign);
}

/// Calls `tell` when there is a simulator that shows the aircraft.
template <class Tell>
void RemoteTraffic::tellSimulator(const QString &callsign, const Tell &tell)
{
    const RemoteAircraft *aircraft = m_table.find(callsign);
    if (!m_session.simulator || !aircraft || aircraft->state != State::InSimulator)
        return;
    const std::shared_ptr<Simulator> simulator = m_session.simulator;
    const RemoteAircraft shown = *aircraft;
    tell(*simulator, shown);
}

void RemoteTraffic::updateConfigurationInSimulator(const QString &callsign)
{
    tellSimulator(callsign, [](Simulator &simulator, const RemoteAircraft &shown) {
        simulator.updateAircraftConfiguration(shown);
    });
}

// --- into the simulator ---

/// An aircraft whose type and place are known goes into the simulator; of one that is there the configuration is asked,
/// once.
void RemoteTraffic::syncAircraft(Record &aircraft)
{
    if (!m_session.simulator || aircraft.typeCode.isEmpty() || !aircraft.positionKnown)
        return;
    const QString told = std::exchange(aircraft.typeCode, m_types.normalized(aircraft.typeCode));
    if (told != aircraft.typeCode) // the type data have come since
        logType(aircraft, told);
    if (aircraft.state != State::InSimulator)
        addToSimulator(aircraft);
    else if (!aircraft.hasConfiguration)
        requestConfiguration(aircraft);
}

void RemoteTraffic::addToSimulator(Record &aircraft)
{
    const std::shared_ptr<Simulator> simulator = m_session.simulator;
    const RemoteAircraft added = aircraft;
    aircraft.state = State::InSimulator; // without waiting for the simulator's answer
    logTraffic("added", added.callsign, QStringLiteral("type ") + added.typeCode);
    simulator->addAircraft(added);
    Record *still = m_table.find(added.callsign);
    if (simulator != m_session.simulator || !still)
        return;
    if (added.hasConfiguration)
        simulator->updateAircraftConfiguration(added);
    else
        requestConfiguration(*still);
}

void RemoteTraffic::requestConfiguration(Record &aircraft)
{
    const QString callsign = aircraft.callsign;
    if (m_session.fsd.isConnected() && aircraft.shouldAskForConfiguration())
        requestFullConfiguration(callsign);
}

void RemoteTraffic::listenToSimulator()
{
    m_simulatorConnections.clear();
    m_simulatorConnections.add({connect(m_session.simulator.get(), &Simulator::aircraftRemovedFromSim, this,
                                        &RemoteTraffic::onRemovedFromSimulator)});
}

/// One that was taken away for its silence is new again when it is heard again: where it is now nobody knows.
void RemoteTraffic::onRemovedFromSimulator(const QString &callsign)
{
    Record *aircraft = m_table.find(common::normalisedCallsign(callsign));
    if (!aircraft || aircraft->state != State::InSimulator)
        return;
    aircraft->state = State::New;
    aircraft->positionKnown = false;
}

void RemoteTraffic::giveToSimulator()
{
    const std::shared_ptr<Simulator> simulator = m_session.simulator;
    const QStringList callsigns = m_table.callsigns();
    for (const QString &callsign : callsigns) {
        if (simulator != m_session.simulator) // replaced on the way, and the next one has all of them
            return;
        Record *aircraft = m_table.find(callsign);
        if (!aircraft || aircraft->typeCode.isEmpty())
            continue;
        aircraft->state = State::Pending;
        syncAircraft(*aircraft);
    }
}

void RemoteTraffic::forget()
{
    m_table.clear();
    m_textPace.clear();
}

void RemoteTraffic::onDeletePilot(const DeletePilot &pdu)
{
    const QString callsign = common::normalisedCallsign(pdu.From);
    const SessionMark mark = m_session.mark();
    if (callsign == m_session.info.callsign)
        emit disableVoiceTransmit();
    const std::optional<Record> gone = m_table.take(callsign);
    if (const std::shared_ptr<Simulator> simulator = m_session.simulator;
        simulator && gone && gone->state == State::InSimulator) {
        const QString reason = QStringLiteral("Pilot disconnected");
        logTraffic("removed", callsign, reason);
        simulator->removeAircraft(*gone, reason);
    }
    if (mark.holds())
        emit pilotDeleted(callsign);
}

// --- types ---

void RemoteTraffic::onPlaneInfoResponse(const PlaneInfoResponse &pdu)
{
    const QString callsign = common::normalisedCallsign(pdu.From);
    Record *aircraft = obtainAircraft(callsign);
    if (!aircraft)
        return;
    const PlaneInfo info = PlaneInfo::of(pdu);
    logInfo(
        QStringLiteral("PlaneInfoResponse in: callsign=%1 equipment=%2 airline=%3 livery=%4 csl=%5")
            .arg(callsign, excerpt(info.equipment), excerpt(info.airline), excerpt(info.livery), excerpt(info.csl)));
    apply(*aircraft, info, m_types);
    logInfo(QStringLiteral("PlaneInfoResponse applied: callsign=%1 typeCode=%2 airline=%3 remoteAirline=%4 livery=%5 "
                           "remoteModelHint=%6")
                .arg(callsign, aircraft->typeCode, excerpt(aircraft->airline), excerpt(info.airline.toUpper()),
                     excerpt(aircraft->livery), excerpt(aircraft->remoteModelHint)));
    aircraft->lastStateChange = now();
    logType(*aircraft, info.equipment);
    aircraft->typeAnswered();
    // Another type does not update the configuration in the simulator here; a flight plan's does.
    syncAircraft(*aircraft);
    announceAircraftInfo(callsign);
}

void RemoteTraffic::onFlightPlan(const FlightPlan &pdu)
{
    const QString callsign = common::normalisedCallsign(pdu.From);
    if (callsign.isEmpty())
        return;
    const QString type = typeFromFlightPlan(pdu.aircraftType);
    if (type.isEmpty()) {
        logInfo(QStringLiteral("FlightPlan ignored: callsign=%1 empty aircraft type").arg(excerpt(callsign)));
        return;
    }
    const std::optional<FiledType> filed = storeFiledType(callsign, type);
    if (filed)
        logInfo(QStringLiteral("FlightPlan applied: callsign=%1 typeCode=%2 rawAircraft=%3 route=%4-%5")
                    .arg(callsign, filed->typeCode, excerpt(pdu.aircraftType), excerpt(pdu.departureAirport),
                         excerpt(pdu.destinationAirport)));
    answerFlightPlanByText(callsign);
    if (filed)
        showFiledType(callsign, *filed);
}

void RemoteTraffic::onNoFlightPlan(const QString &callsign)
{
    if (Record *aircraft = m_table.find(callsign))
        aircraft->typeAnswered();
    qInfo().noquote() << "No flight plan available for" << excerpt(callsign);
}

void RemoteTraffic::onFlightPlanAnswer(const ClientQueryResponse &pdu)
{
    const QStringList fields = pdu.payload.first(std::min(pdu.payload.size(), FlightPlanAnswer::maximumFields));
    const QString payload = excerpt(fields.join(QLatin1Char(':')));
    const FlightPlanAnswer answer = FlightPlanAnswer::read(pdu.From, fields);
    if (!answer.isComplete()) {
        logInfo(QStringLiteral("FlightPlan response ignored: from=%1 payload=%2").arg(excerpt(pdu.From), payload));
        return;
    }
    const std::optional<FiledType> filed = storeFiledType(answer.callsign, answer.type);
    if (!filed)
        return;
    logInfo(QStringLiteral("FlightPlan response applied: callsign=%1 typeCode=%2 payload=%3")
                .arg(answer.callsign, filed->typeCode, payload));
    showFiledType(answer.callsign, *filed);
}

/// Nothing for an aircraft that has no record.
std::optional<RemoteTraffic::FiledType> RemoteTraffic::storeFiledType(const QString &callsign, const QString &type)
{
    Record *aircraft = obtainAircraft(callsign);
    if (!aircraft)
        return std::nullopt;
    const QString typeCode = m_types.normalized(type);
    const bool differs = typeCode != aircraft->typeCode; // both upper-case
    aircraft->typeCode = typeCode;
    aircraft->lastStateChange = now();
    logType(*aircraft, type);
    return FiledType{typeCode, differs};
}

void RemoteTraffic::showFiledType(const QString &callsign, const FiledType &filed)
{
    if (Record *aircraft = m_table.find(callsign)) // answerFlightPlanByText() may have come back
        syncAircraft(*aircraft);
    if (filed.differs)
        updateConfigurationInSimulator(callsign);
    announceAircraftInfo(callsign); // nothing of one that is forgotten by now
}

void RemoteTraffic::announceAircraftInfo(const QString &callsign)
{
    const RemoteAircraft *aircraft = m_table.find(callsign);
    if (!aircraft)
        return;
    const RemoteAircraft told = *aircraft;
    emit aircraftInfoReceived(callsign, told.typeCode, told.airline);
}

// --- configurations ---

void RemoteTraffic::onConfiguration(const QString &from, const QString &json)
{
    const SessionMark mark = m_session.mark();
    if (const auto message = model::AircraftConfigurationMessage::parse(json); message.configuration)
        storeConfiguration(common::normalisedCallsign(from), *message.configuration);
    if (mark.holds())
        emit aircraftConfigurationInfoReceived(from, json);
}

/// Whole: only AircraftManager's record merges what comes in pieces.
void RemoteTraffic::storeConfiguration(const QString &callsign, const model::AircraftConfiguration &configuration)
{
    Record *aircraft = obtainAircraft(callsign);
    if (!aircraft)
        return;
    aircraft->configuration = configuration;
    aircraft->hasConfiguration = true;
    aircraft->lastUpdate = now();
    aircraft->lastStateChange = now();
    syncAircraft(*aircraft);
    updateConfigurationInSimulator(callsign); // a second time for one that the sync has added
}

// --- questions ---

void RemoteTraffic::requestPlaneInfoAndFlightPlan(const QString &callsign)
{
    const QString &own = m_session.info.callsign;
    m_session.send(PlaneInfoRequest(own, callsign));
    m_session.send(ClientQuery(own, serverCallsign, ClientQueryType::FlightPlan, {callsign}));
    requestFlightPlanByText(callsign);
}

/// The servers of the token protocol take the question as a text.
void RemoteTraffic::requestFlightPlanByText(const QString &callsign)
{
    if (!m_session.usesTokens())
        return;
    m_textPace.note(callsign, m_session.clock.steadyMs());
    m_session.send(TextMessage(m_session.info.callsign, serverCallsign, QStringLiteral("FP:%1:GET").arg(callsign)));
}

/// A flight plan is answered with a question for it, and the server answers that with the flight plan. The pace ends
/// it.
void RemoteTraffic::answerFlightPlanByText(const QString &callsign)
{
    if (m_session.usesTokens() && m_textPace.isDue(callsign, m_session.clock.steadyMs()))
        requestFlightPlanByText(callsign);
}

void RemoteTraffic::requestFullConfiguration(const QString &callsign)
{
    const model::AircraftConfigurationMessage request{.requestFull = true, .configuration = {}};
    m_session.send(
        ClientQuery(m_session.info.callsign, callsign, ClientQueryType::AircraftConfiguration, {request.compose()}));
}

} // namespace tarvo::manager
