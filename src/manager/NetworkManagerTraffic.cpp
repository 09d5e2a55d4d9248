// The other aircraft: what is known of them, and how they get into the simulator.
//
// Whatever is sent, raised or told to the simulator may come back and end the session, forget an aircraft or replace
// the simulator. So nothing of the table is kept across such a call, and what follows looks whether it still holds.

#include "fsd/pdu/DeletePilot.h"
#include "fsd/pdu/FlightPlan.h"
#include "manager/NetworkManagerSending.h"

#include "common/Callsign.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/PlaneInfoRequest.h"
#include "fsd/pdu/PlaneInfoResponse.h"
#include "manager/FlightPlanAnswer.h"
#include "manager/OneLine.h"
#include "manager/RemoteAircraftUpdates.h"

#include <QDebug>

namespace tarvo::manager {

using model::RemoteAircraft;
using simulator::Simulator;
using State = model::RemoteAircraft::State;
using namespace fsd::pdu;

namespace {

/// One line of the log; a text from outside can't write a second one.
void logInfo(const QString &text)
{
    qInfo().noquote() << onOneLine(text);
}

} // namespace

QDateTime NetworkManager::now() const
{
    return QDateTime::fromMSecsSinceEpoch(m_clock.wallMs(), Qt::UTC); // local time would cost a look-up of its zone
}

/// Null for the own aircraft and for an observer's shadow: whatever message brings them, they are echoes.
RemoteAircraft *NetworkManager::obtainAircraft(const QString &callsign)
{
    return isOwnOrShadowed(callsign, m_connectInfo) ? nullptr : m_traffic.obtain(callsign, now());
}

// --- positions ---

void NetworkManager::onPilotPosition(const PilotPosition &pdu)
{
    const std::shared_ptr<Simulator> simulator = m_simulator;
    if (!simulator)
        return;
    const QString callsign = common::normalisedCallsign(pdu.From);
    const double groundSpeed = pdu.groundSpeed;
    const quint64 generation = m_generation;
    const model::AircraftVisualState state = visualStateOf(pdu, simulator->adjustRemoteAltitude(pdu.trueAltitude));
    RemoteAircraft *aircraft = generation == m_generation ? obtainAircraft(callsign) : nullptr;
    if (!aircraft)
        return;
    aircraft->visualState = state;
    aircraft->groundSpeed = groundSpeed;
    aircraft->lastUpdate = now();

    prepareAircraft(callsign);
    tellSimulator(callsign,
                  [&](Simulator &current, const RemoteAircraft &shown) { current.positionUpdate(shown, state); });
    if (generation == m_generation)
        emit slowPositionUpdateReceived(callsign, state, groundSpeed);
}

void NetworkManager::onFastPilotPosition(const FastPilotPosition &pdu)
{
    const std::shared_ptr<Simulator> simulator = m_simulator;
    if (!simulator)
        return;
    const QString callsign = common::normalisedCallsign(pdu.From);
    const Velocities velocities = velocitiesOf(pdu);
    const quint64 generation = m_generation;
    const model::AircraftVisualState state = visualStateOf(pdu, simulator->adjustRemoteAltitude(pdu.trueAltitude));
    RemoteAircraft *aircraft = generation == m_generation ? obtainAircraft(callsign) : nullptr;
    if (!aircraft)
        return;
    aircraft->visualState = state;
    aircraft->fastSeen = true;
    aircraft->groundSpeed = groundSpeedAfter(pdu, aircraft->groundSpeed);
    aircraft->lastUpdate = now();

    prepareAircraft(callsign);
    tellSimulator(callsign, [&](Simulator &current, const RemoteAircraft &shown) {
        current.fastPositionUpdate(shown, state, velocities.positional, velocities.rotational);
    });
    if (generation == m_generation)
        emit fastPositionUpdateReceived(callsign, state, velocities.positional, velocities.rotational);
}

/// Asks what is still unknown of an aircraft that has reported, and sees to it that the simulator shows it.
void NetworkManager::prepareAircraft(const QString &callsign)
{
    if (m_fsd.isConnected() && m_traffic.shouldAskForType(callsign))
        requestPlaneInfoAndFlightPlan(callsign);
    syncAircraft(callsign);
}

/// Calls `tell` when there is a simulator that shows the aircraft.
template <class Tell>
void NetworkManager::tellSimulator(const QString &callsign, const Tell &tell)
{
    const RemoteAircraft *aircraft = m_traffic.find(callsign);
    if (!m_simulator || !aircraft || aircraft->state != State::InSimulator)
        return;
    const std::shared_ptr<Simulator> simulator = m_simulator;
    const RemoteAircraft shown = *aircraft;
    tell(*simulator, shown);
}

void NetworkManager::updateConfigurationInSimulator(const QString &callsign)
{
    tellSimulator(callsign, [](Simulator &simulator, const RemoteAircraft &shown) {
        simulator.updateAircraftConfiguration(shown);
    });
}

// --- into the simulator ---

/// An aircraft whose type is known goes into the simulator; of one that is there the configuration is asked until it
/// is known.
void NetworkManager::syncAircraft(const QString &callsign)
{
    RemoteAircraft *aircraft = m_traffic.find(callsign);
    if (!m_simulator || !aircraft || aircraft->state == State::Ignored || aircraft->typeCode.isEmpty())
        return;
    aircraft->typeCode = m_types.normalized(aircraft->typeCode); // the type data may have come since
    if (aircraft->state != State::InSimulator)
        addToSimulator(*aircraft);
    else if (!aircraft->hasConfiguration)
        requestConfiguration(callsign);
}

void NetworkManager::addToSimulator(RemoteAircraft &aircraft)
{
    const std::shared_ptr<Simulator> simulator = m_simulator;
    const RemoteAircraft added = aircraft;
    aircraft.state = State::InSimulator; // without waiting for the simulator's answer
    simulator->addAircraft(added);
    if (simulator != m_simulator || !m_traffic.find(added.callsign))
        return;
    if (added.hasConfiguration)
        simulator->updateAircraftConfiguration(added);
    else
        requestConfiguration(added.callsign);
}

void NetworkManager::requestConfiguration(const QString &callsign)
{
    if (m_fsd.isConnected() && m_traffic.shouldAskForConfiguration(callsign))
        requestFullConfiguration(callsign);
}

void NetworkManager::moveTrafficToNewSimulator()
{
    const std::shared_ptr<Simulator> simulator = m_simulator;
    const QStringList callsigns = m_traffic.callsigns();
    for (const QString &callsign : callsigns) {
        if (simulator != m_simulator) // replaced on the way, and the next one has all of them
            return;
        RemoteAircraft *aircraft = m_traffic.find(callsign);
        if (!aircraft || aircraft->typeCode.isEmpty())
            continue;
        aircraft->state = State::Pending;
        syncAircraft(callsign);
    }
}

void NetworkManager::forgetTraffic()
{
    m_traffic.clear();
}

void NetworkManager::onDeletePilot(const DeletePilot &pdu)
{
    const QString callsign = common::normalisedCallsign(pdu.From);
    const quint64 generation = m_generation;
    if (callsign == m_connectInfo.callsign)
        emit disableVoiceTransmit();
    if (generation != m_generation)
        return;
    const std::optional<RemoteAircraft> gone = m_traffic.take(callsign);
    if (const std::shared_ptr<Simulator> simulator = m_simulator;
        simulator && gone && gone->state == State::InSimulator)
        simulator->removeAircraft(*gone, QStringLiteral("Pilot disconnected"));
    if (generation == m_generation)
        emit pilotDeleted(callsign);
}

// --- types ---

void NetworkManager::onPlaneInfoRequest(const PlaneInfoRequest &pdu)
{
    sendPdu(PlaneInfoResponse(m_connectInfo.callsign, pdu.From, m_connectInfo.typeCode,
                              airlineOfCallsign(m_connectInfo.callsign), {}, {}));
}

void NetworkManager::onPlaneInfoResponse(const PlaneInfoResponse &pdu)
{
    const QString callsign = common::normalisedCallsign(pdu.From);
    RemoteAircraft *aircraft = obtainAircraft(callsign);
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
    m_traffic.typeAnswered(callsign);
    // Another type does not update the configuration in the simulator here; a flight plan's does.
    const quint64 generation = m_generation;
    syncAircraft(callsign);
    if (generation == m_generation)
        announceAircraftInfo(callsign);
}

void NetworkManager::onFlightPlan(const FlightPlan &pdu)
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
    const quint64 generation = m_generation;
    requestFlightPlanByText(callsign);
    if (filed && generation == m_generation)
        showFiledType(callsign, *filed);
}

void NetworkManager::onFlightPlanAnswer(const ClientQueryResponse &pdu)
{
    const QString payload = excerpt(pdu.payload.join(QLatin1Char(':')));
    const FlightPlanAnswer answer = FlightPlanAnswer::read(pdu.From, pdu.payload);
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
std::optional<NetworkManager::FiledType> NetworkManager::storeFiledType(const QString &callsign, const QString &type)
{
    RemoteAircraft *aircraft = obtainAircraft(callsign);
    if (!aircraft)
        return std::nullopt;
    const QString typeCode = m_types.normalized(type);
    const bool differs = typeCode.compare(aircraft->typeCode, Qt::CaseInsensitive) != 0;
    aircraft->typeCode = typeCode;
    aircraft->lastStateChange = now();
    m_traffic.typeAnswered(callsign);
    return FiledType{typeCode, differs};
}

void NetworkManager::showFiledType(const QString &callsign, const FiledType &filed)
{
    const quint64 generation = m_generation;
    syncAircraft(callsign);
    if (filed.differs)
        updateConfigurationInSimulator(callsign);
    if (generation == m_generation)
        announceAircraftInfo(callsign);
}

void NetworkManager::announceAircraftInfo(const QString &callsign)
{
    if (const std::optional<RemoteAircraft> aircraft = remoteAircraft(callsign))
        emit aircraftInfoReceived(callsign, aircraft->typeCode, aircraft->airline);
}

// --- configurations ---

void NetworkManager::onConfiguration(const QString &from, const QString &json)
{
    const quint64 generation = m_generation;
    if (const auto message = model::AircraftConfigurationMessage::parse(json); message.configuration)
        storeConfiguration(common::normalisedCallsign(from), *message.configuration);
    if (generation == m_generation)
        emit aircraftConfigurationInfoReceived(from, json);
}

/// Whole: only AircraftManager's record merges what comes in pieces.
void NetworkManager::storeConfiguration(const QString &callsign, const model::AircraftConfiguration &configuration)
{
    RemoteAircraft *aircraft = obtainAircraft(callsign);
    if (!aircraft)
        return;
    aircraft->configuration = configuration;
    aircraft->hasConfiguration = true;
    aircraft->lastStateChange = now();
    m_traffic.configurationAnswered(callsign);
    syncAircraft(callsign);
    updateConfigurationInSimulator(callsign); // a second time for one that the sync has added
}

// --- what others may know ---

std::optional<RemoteAircraft> NetworkManager::remoteAircraft(const QString &callsign) const
{
    const RemoteAircraft *aircraft = m_traffic.find(callsign);
    return aircraft ? std::optional(*aircraft) : std::nullopt;
}

bool NetworkManager::knowsAircraft(const QString &callsign) const
{
    return m_traffic.find(callsign) != nullptr;
}

QList<RemoteAircraft> NetworkManager::remoteAircraft() const
{
    return m_traffic.all();
}

} // namespace tarvo::manager
