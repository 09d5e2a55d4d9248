// Whatever is sent or told to the simulator may come back and change the list of records: nothing of the list is kept
// across such a call.

#include "manager/AircraftManager.h"

#include "common/Callsign.h"
#include "common/TrafficLog.h"
#include "manager/NetworkManager.h"
#include "manager/RemoteAircraftTable.h"
#include "simulator/Simulator.h"

#include <QDebug>

#include <utility>

namespace tarvo::manager {

using common::trafficLog;
using common::trafficText;
using model::RemoteAircraft;
using simulator::Simulator;
using State = model::RemoteAircraft::State;

namespace {

constexpr int staleIntervalMs = 10000;
constexpr int syncIntervalMs = 5000;
constexpr qint64 staleAircraftAfterMs = 15000;
constexpr qint64 pendingForMs = 10000;
constexpr double standingKnots = 0.5;
constexpr char byAircraftManager[] = "AircraftManager"; ///< in the log, beside NetworkManager

/// Enough is known to place the aircraft well: it stands, or its fast positions come.
bool isReady(const RemoteAircraft &aircraft)
{
    return aircraft.state == State::New && aircraft.hasConfiguration && !aircraft.typeCode.isEmpty() &&
           (aircraft.groundSpeed <= standingKnots || aircraft.fastSeen);
}

void logTraffic(const char *deed, const QString &callsign, const QString &why)
{
    qCDebug(trafficLog).noquote() << trafficText(deed, callsign, byAircraftManager, why);
}

/// What an aircraft that is not ready waits for, for the log.
QString missing(const RemoteAircraft &aircraft)
{
    QStringList words;
    if (!aircraft.hasConfiguration)
        words << QStringLiteral("no configuration");
    if (aircraft.typeCode.isEmpty())
        words << QStringLiteral("no type");
    if (aircraft.groundSpeed > standingKnots && !aircraft.fastSeen)
        words << QStringLiteral("no fast position");
    return words.join(QLatin1StringView(", "));
}

void logWaiting(const RemoteAircraft &aircraft)
{
    if (aircraft.state == State::New)
        logTraffic("kept back", aircraft.callsign, missing(aircraft));
}

/// False for a message that says nothing yet: parts of a configuration whose whole is unknown.
bool takeConfiguration(RemoteAircraft &aircraft, const model::AircraftConfiguration &configuration)
{
    if (configuration.isFullData.value_or(false)) {
        aircraft.configuration = configuration;
        aircraft.hasConfiguration = true;
        return true;
    }
    if (!aircraft.hasConfiguration)
        return false;
    model::merge(aircraft.configuration, configuration);
    return true;
}

} // namespace

AircraftManager::AircraftManager(std::shared_ptr<NetworkManager> network, const common::Clock &clock, QObject *parent)
    : QObject(parent), m_network(std::move(network)), m_clock(clock), m_staleTimer(this), m_syncTimer(this)
{
    m_staleTimer.setObjectName(QStringLiteral("staleTimer"));
    m_staleTimer.setInterval(staleIntervalMs);
    m_syncTimer.setObjectName(QStringLiteral("syncTimer"));
    m_syncTimer.setInterval(syncIntervalMs);
    connect(&m_staleTimer, &QTimer::timeout, this, &AircraftManager::removeStale);
    connect(&m_syncTimer, &QTimer::timeout, this, &AircraftManager::sync);
    connectNetwork();
    onSimulatorChanged();
}

void AircraftManager::connectNetwork()
{
    const NetworkManager *network = m_network.get();
    connect(network, &NetworkManager::networkConnected, this, &AircraftManager::onNetworkConnected);
    connect(network, &NetworkManager::networkDisconnected, this, &AircraftManager::onNetworkDisconnected);
    connect(network, &NetworkManager::capabilitiesResponseReceived, this, &AircraftManager::onCapabilitiesResponse);
    connect(network, &NetworkManager::capabilitiesRequestReceived, this, &AircraftManager::onCapabilitiesRequest);
    connect(network, &NetworkManager::slowPositionUpdateReceived, this, &AircraftManager::onSlowPosition);
    connect(network, &NetworkManager::fastPositionUpdateReceived, this, &AircraftManager::onFastPosition);
    connect(network, &NetworkManager::aircraftConfigurationInfoReceived, this, &AircraftManager::onConfiguration);
    connect(network, &NetworkManager::aircraftInfoReceived, this, &AircraftManager::onAircraftInfo);
    connect(network, &NetworkManager::pilotDeleted, this, &AircraftManager::onPilotDeleted);
    connect(network, &NetworkManager::simulatorChanged, this, &AircraftManager::onSimulatorChanged);
}

void AircraftManager::setIgnoreList(const QStringList &callsigns)
{
    m_ignored = callsigns;
}

QList<RemoteAircraft> AircraftManager::aircraft() const
{
    return {m_records.begin(), m_records.end()};
}

// --- the session ---

void AircraftManager::onNetworkConnected()
{
    m_staleTimer.start();
}

void AircraftManager::onNetworkDisconnected()
{
    if (const std::shared_ptr<Simulator> simulator = m_simulator) {
        logTraffic("removed", QStringLiteral("all"), QStringLiteral("Disconnected"));
        simulator->removeAllAircraft();
    }
    m_index.clear();
    m_records.clear();
    m_staleTimer.stop();
}

void AircraftManager::onCapabilitiesResponse(const QString &from, const QString &data)
{
    if (data.contains(QLatin1StringView("ACCONFIG=1")))
        m_network->requestFullConfiguration(from);
}

void AircraftManager::onCapabilitiesRequest(const QString &from)
{
    const RemoteAircraft *aircraft = find(from);
    if (!aircraft || aircraft->state == State::Ignored)
        return;
    const QString callsign = aircraft->callsign;
    m_network->requestPlaneInfoAndFlightPlan(callsign);
}

// --- what the other aircraft tell ---

void AircraftManager::onSlowPosition(const QString &from, const model::AircraftVisualState &visualState,
                                     double groundSpeed)
{
    RemoteAircraft *aircraft = find(from);
    if (!aircraft) {
        meet(common::normalisedCallsign(from), groundSpeed);
        return;
    }
    aircraft->visualState = visualState;
    aircraft->groundSpeed = groundSpeed;
    aircraft->lastUpdate = now();
    if (aircraft->state == State::Ignored)
        return;
    const QString callsign = aircraft->callsign;
    if (const std::shared_ptr<Simulator> simulator = m_simulator)
        simulator->aircraftHeartbeat(callsign);
    if (const RemoteAircraft *still = find(callsign); still && isReady(*still))
        sync();
}

void AircraftManager::meet(const QString &callsign, double groundSpeed)
{
    const RemoteAircraft aircraft = newRecord(callsign, groundSpeed);
    add(aircraft);
    if (aircraft.state == State::Ignored)
        logTraffic("ignored", callsign, QStringLiteral("it is on the ignore list"));
    else
        logWaiting(aircraft);
    m_network->requestCapabilities(callsign);
    m_network->sendOwnCapabilities(callsign);
    m_network->requestPlaneInfoAndFlightPlan(callsign);
}

/// Adds nothing by itself: an aircraft that is ready with its first fast position goes into the simulator with the next
/// slow one, or with another event.
void AircraftManager::onFastPosition(const QString &from, const model::AircraftVisualState &visualState,
                                     const model::VelocityVector &positional, const model::VelocityVector &rotational)
{
    RemoteAircraft *aircraft = find(from);
    if (!aircraft || aircraft->state == State::Ignored)
        return;
    aircraft->visualState = visualState;
    aircraft->fastSeen = true;
    aircraft->lastUpdate = now();
    if (const std::shared_ptr<Simulator> simulator = m_simulator) {
        const RemoteAircraft told = *aircraft;
        simulator->fastPositionUpdate(told, visualState, positional, rotational);
    }
}

void AircraftManager::onConfiguration(const QString &from, const QString &json)
{
    RemoteAircraft *aircraft = find(from);
    if (!aircraft)
        return;
    const auto message = model::AircraftConfigurationMessage::parse(json);
    if (!message.configuration)
        return;
    aircraft->lastUpdate = now();
    if (!takeConfiguration(*aircraft, *message.configuration))
        return;
    if (isReady(*aircraft)) {
        sync();
    } else {
        logWaiting(*aircraft);
        updateConfigurationInSimulator(*aircraft);
    }
}

void AircraftManager::onAircraftInfo(const QString &from, const QString &equipment, const QString &airline)
{
    if (RemoteAircraft *aircraft = find(from)) {
        aircraft->typeCode = equipment;
        aircraft->airline = airline;
        takeFromNetwork(*aircraft);
        if (!isReady(*aircraft))
            logWaiting(*aircraft);
    }
    sync();
}

/// The record stays until the simulator has let go of the aircraft. Kept on purpose: one that is still to be added, or
/// whose addition waits for its answer for too long, is added by the sync of its own deletion.
void AircraftManager::onPilotDeleted(const QString &from)
{
    if (const RemoteAircraft *aircraft = find(from); aircraft && aircraft->state == State::Ignored) {
        erase(aircraft->callsign); // the simulator won't answer for what it was never told of
    } else if (aircraft) {
        removeFromSimulator(RemoteAircraft(*aircraft), QStringLiteral("Deleted"));
    }
    sync();
}

// --- the simulator ---

void AircraftManager::onSimulatorChanged()
{
    m_simulatorConnections.clear();
    m_simulator = m_network->simulator();
    if (!m_simulator)
        return;
    m_simulatorConnections.add({
        connect(m_simulator.get(), &Simulator::aircraftAddedToSim, this, &AircraftManager::onAddedToSim),
        connect(m_simulator.get(), &Simulator::aircraftRemovedFromSim, this, &AircraftManager::erase),
        connect(m_simulator.get(), &Simulator::restarted, this, &AircraftManager::onSimulatorRestarted),
    });
    tellConfigurations();
}

/// NetworkManager has given the aircraft to a new simulator with what each pilot told last: where that was only a part,
/// the whole follows.
void AircraftManager::tellConfigurations()
{
    const std::shared_ptr<Simulator> simulator = m_simulator;
    const QList<RemoteAircraft> records = aircraft();
    for (const RemoteAircraft &record : records) {
        if (simulator != m_simulator)
            return;
        const bool isShown = record.state == State::InSimulator || record.state == State::Pending;
        const std::optional<RemoteAircraft> given = m_network->remoteAircraft(record.callsign);
        if (isShown && record.hasConfiguration && given && given->configuration != record.configuration)
            updateConfigurationInSimulator(record);
    }
}

/// It has none of them any more: each that is ready is added anew, with all that its configuration has become.
void AircraftManager::onSimulatorRestarted()
{
    for (RemoteAircraft &aircraft : m_records) {
        if (aircraft.state != State::Ignored)
            aircraft.state = State::New;
    }
    sync();
}

void AircraftManager::onAddedToSim(const QString &callsign)
{
    // NetworkManager knows no ignore list, so that the simulator may well report an ignored aircraft.
    if (RemoteAircraft *aircraft = find(callsign); aircraft && aircraft->state != State::Ignored)
        aircraft->state = State::InSimulator;
}

void AircraftManager::updateConfigurationInSimulator(const RemoteAircraft &aircraft)
{
    const std::shared_ptr<Simulator> simulator = m_simulator;
    if (!simulator || aircraft.state == State::Ignored)
        return;
    const RemoteAircraft told = aircraft;
    simulator->updateAircraftConfiguration(told);
}

/// Adds every aircraft that is ready, and again one whose addition the simulator has not confirmed in time.
void AircraftManager::sync()
{
    const std::shared_ptr<Simulator> simulator = m_simulator;
    if (!simulator)
        return;
    const QList<RemoteAircraft> due = takeDue();
    for (const RemoteAircraft &aircraft : due) {
        if (simulator != m_simulator)
            return;
        if (!find(aircraft.callsign)) // gone meanwhile
            continue;
        logTraffic("added", aircraft.callsign, QStringLiteral("type ") + aircraft.typeCode);
        simulator->addAircraft(aircraft);
        if (simulator != m_simulator || !find(aircraft.callsign)) // gone within the addition
            continue;
        simulator->updateAircraftConfiguration(aircraft);
    }
}

void AircraftManager::removeFromSimulator(const RemoteAircraft &aircraft, const QString &reason)
{
    const std::shared_ptr<Simulator> simulator = m_simulator;
    if (!simulator)
        return;
    logTraffic("removed", aircraft.callsign, reason);
    simulator->removeAircraft(aircraft, reason);
}

/// Copies of the aircraft to be added. Their records are pending already, because the simulator may confirm an addition
/// before it returns from it.
QList<RemoteAircraft> AircraftManager::takeDue()
{
    const QDateTime time = now();
    QList<RemoteAircraft> due;
    for (RemoteAircraft &aircraft : m_records) {
        if (aircraft.state == State::Pending && aircraft.lastStateChange.msecsTo(time) > pendingForMs) {
            aircraft.state = State::New;
            logTraffic("given up", aircraft.callsign, QStringLiteral("the simulator has not confirmed its addition"));
        }
        if (!isReady(aircraft))
            continue;
        due.append(aircraft);
        aircraft.lastStateChange = time;
        aircraft.state = State::Pending;
    }
    return due;
}

/// Without a simulator nothing ages.
void AircraftManager::removeStale()
{
    const std::shared_ptr<Simulator> simulator = m_simulator;
    if (!simulator)
        return;
    const QDateTime time = now();
    QList<RemoteAircraft> stale;
    for (const RemoteAircraft &aircraft : std::as_const(m_records)) {
        if (aircraft.lastUpdate.msecsTo(time) > staleAircraftAfterMs)
            stale.append(aircraft);
    }
    for (const RemoteAircraft &aircraft : std::as_const(stale)) {
        if (simulator != m_simulator)
            return;
        if (aircraft.state == State::Ignored)
            erase(aircraft.callsign);
        else
            removeFromSimulator(aircraft, QStringLiteral("Stale"));
    }
}

// --- the records ---

RemoteAircraft *AircraftManager::find(const QString &callsign)
{
    const auto found = m_index.constFind(common::normalisedCallsign(callsign));
    return found == m_index.constEnd() ? nullptr : &**found;
}

RemoteAircraft AircraftManager::newRecord(const QString &callsign, double groundSpeed) const
{
    RemoteAircraft aircraft;
    aircraft.callsign = callsign;
    takeFromNetwork(aircraft);
    aircraft.lastUpdate = now();
    aircraft.groundSpeed = groundSpeed;
    if (m_ignored.contains(callsign, Qt::CaseInsensitive))
        aircraft.state = State::Ignored;
    return aircraft;
}

void AircraftManager::add(const RemoteAircraft &aircraft)
{
    if (m_index.size() >= RemoteAircraftTable::maximumSize)
        makeRoom();
    m_index.insert(aircraft.callsign, m_records.insert(m_records.end(), aircraft));
}

void AircraftManager::erase(const QString &callsign)
{
    const auto found = m_index.find(common::normalisedCallsign(callsign));
    if (found == m_index.end())
        return;
    m_records.erase(*found);
    m_index.erase(found);
}

/// Records stay for as long as a simulator does not confirm that it has let go of the aircraft, which may be for ever.
/// Those of pilots who have left the network are the ones to spare; the others are not more than NetworkManager allows.
void AircraftManager::makeRoom()
{
    const QList<RemoteAircraft> records = aircraft();
    for (const RemoteAircraft &record : records) {
        if (!m_network->knowsAircraft(record.callsign))
            erase(record.callsign);
    }
}

/// What only NetworkManager's record is told.
void AircraftManager::takeFromNetwork(RemoteAircraft &aircraft) const
{
    const std::optional<RemoteAircraft> known = m_network->remoteAircraft(aircraft.callsign);
    if (!known)
        return;
    aircraft.livery = known->livery;
    aircraft.remoteModelHint = known->remoteModelHint;
    aircraft.visualState = known->visualState;
}

QDateTime AircraftManager::now() const
{
    return QDateTime::fromMSecsSinceEpoch(m_clock.wallMs(), Qt::UTC);
}

} // namespace tarvo::manager
