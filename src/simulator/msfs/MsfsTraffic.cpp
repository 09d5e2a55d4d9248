// Whatever is asked of the session or told may come back and change the table of pilots: nothing of it is kept across
// such a call.

#include "simulator/msfs/MsfsTraffic.h"

#include "common/Clock.h"
#include "common/OneLine.h"
#include "model/UserAircraftData.h"
#include "model/VelocityVector.h"
#include "simulator/msfs/ModelChoice.h"
#include "simulator/msfs/RemoteRules.h"
#include "simulator/msfs/RemoteVisuals.h"
#include "simulator/msfs/library/MsfsAircraftLibrary.h"
#include "simulator/msfs/session/SimConnectSession.h"

#include <QDebug>

#include <utility>

namespace tarvo::simulator::msfs {

using common::onOneLine;
using model::RemoteAircraft;

namespace {

constexpr qint64 spawnLineIntervalMs = 5000;

/// One line of the log; a text from outside can't write a second one.
void logInfo(const QString &text)
{
    qInfo().noquote() << onOneLine(text);
}

void logWarning(const QString &text)
{
    qWarning().noquote() << onOneLine(text);
}

/// One of the two who tell of him may know a part of his configuration or nothing. What isn't told stays.
RemoteAircraft withKnownConfiguration(RemoteAircraft now, const RemoteAircraft &before)
{
    if (!before.hasConfiguration || now.configuration.isFullData.value_or(false))
        return now;
    const model::AircraftConfiguration told = now.configuration;
    now.configuration = before.configuration;
    if (now.hasConfiguration)
        model::merge(now.configuration, told);
    now.hasConfiguration = true;
    return now;
}

QString orNone(const QString &text)
{
    return text.isEmpty() ? QStringLiteral("<none>") : text;
}

} // namespace

MsfsTraffic::MsfsTraffic(SimConnectSession &session, MsfsAircraftLibrary &library, const common::Clock &clock,
                         QObject *parent)
    : QObject(parent), m_session(session), m_models(library), m_clock(clock), m_library(library)
{
    connect(&m_library, &LibraryWatch::ready, this, &MsfsTraffic::onLibraryReady);
    connect(&m_library, &LibraryWatch::statusChanged, this, &MsfsTraffic::mappingStatusChanged);
}

MsfsRemoteState *MsfsTraffic::find(const QString &callsign)
{
    const auto found = m_states.find(callsign);
    return found == m_states.end() ? nullptr : &*found;
}

/// One count for creates and removes. 0 is no id.
quint32 MsfsTraffic::takeRequestId()
{
    const quint32 id = m_nextRequestId == 0 ? 1 : m_nextRequestId;
    m_nextRequestId = id + 1;
    return id;
}

// --- who is there ---

void MsfsTraffic::add(const RemoteAircraft &aircraft)
{
    const QString callsign = aircraft.callsign;
    if (!track(aircraft))
        spawn(callsign);
}

void MsfsTraffic::update(const RemoteAircraft &aircraft)
{
    const MsfsRemoteState *state = find(aircraft.callsign);
    if (!state) {
        track(aircraft);
        return;
    }
    RemoteAircraft updated = aircraft;
    updated.groundSpeed = state->remote.groundSpeed;
    track(updated);
    applyVisuals(updated.callsign);
}

void MsfsTraffic::remove(const QString &callsign, const QString &reason)
{
    if (!reason.isEmpty())
        logInfo(QStringLiteral("Removing MSFS remote aircraft %1: %2").arg(callsign, reason));
    const MsfsRemoteState gone = m_states.take(callsign);
    if (gone.objectId != 0)
        m_session.removeRemoteAircraft(gone.objectId, takeRequestId());
    emit removed(callsign);
}

void MsfsTraffic::removeAll()
{
    const QHash<QString, MsfsRemoteState> gone = std::exchange(m_states, {});
    for (const MsfsRemoteState &state : gone) {
        if (state.objectId != 0)
            m_session.removeRemoteAircraft(state.objectId, takeRequestId());
    }
}

// --- which model ---

/// True when it has chosen another model, and asked for an object of it. To ask again would only be refused again.
bool MsfsTraffic::track(const RemoteAircraft &aircraft)
{
    if (!m_models.isReady()) {
        m_library.load();
        m_library.check();
    }
    if (!m_models.isReady()) { // a small library may be done by now, and then nobody would ask again
        remember(aircraft);
        return false;
    }
    const ModelChoice choice = chooseModel(m_models, m_profile, aircraft);
    const MsfsRemoteState *before = find(aircraft.callsign);
    const bool same = before && isSameDecision(*before, choice, aircraft);
    store(aircraft, choice);
    if (same)
        return false;
    const QString callsign = aircraft.callsign; // of a record that may go meanwhile
    tellDecision(aircraft, choice);
    letGo(callsign);
    spawn(callsign);
    return true;
}

/// A pilot whose model is chosen later.
void MsfsTraffic::remember(const RemoteAircraft &aircraft)
{
    MsfsRemoteState &state = m_states[aircraft.callsign];
    state.remote = withKnownConfiguration(aircraft, state.remote);
    state.match = {};
    state.decided = false;
}

void MsfsTraffic::store(const RemoteAircraft &aircraft, const ModelChoice &choice)
{
    MsfsRemoteState &state = m_states[aircraft.callsign];
    state.remote = withKnownConfiguration(aircraft, state.remote);
    state.match = choice.match;
    state.strategy = choice.strategy;
    state.decided = true;
}

void MsfsTraffic::tellDecision(const RemoteAircraft &aircraft, const ModelChoice &choice)
{
    const QString &title = choice.match.entry.title;
    logInfo(QStringLiteral("MSFS match decision: callsign=%1 type=%2 airline=%3 callsignAirlineHint=%4 livery=%5 "
                           "peerHint=%6 strategy=%7 container=%8")
                .arg(orNone(aircraft.callsign), orNone(aircraft.typeCode), orNone(aircraft.airline),
                     orNone(choice.callsignAirlineHint), orNone(aircraft.livery), orNone(aircraft.remoteModelHint),
                     orNone(choice.strategy), orNone(title)));
    if (title.isEmpty())
        tellNoModel(aircraft, choice);
    else
        tellModel(aircraft, choice);
}

void MsfsTraffic::tellModel(const RemoteAircraft &aircraft, const ModelChoice &choice)
{
    const MsfsModelMatch &match = choice.match;
    if (choice.fromPeerHint)
        logInfo(QStringLiteral("Using peer model hint for %1: %2").arg(aircraft.callsign, match.entry.title));
    logInfo(QStringLiteral("MSFS model match %1 [%2/%3/%4 hint=%5] -> %6 (%7, score=%8, fallback=%9)")
                .arg(aircraft.callsign, aircraft.typeCode, choice.airline, aircraft.livery, choice.callsignAirlineHint,
                     match.entry.title, displayName(match.runtime), QString::number(match.score),
                     match.fallback ? QStringLiteral("yes") : QStringLiteral("no")));
    emit mappingStatusChanged(tr("MSFS 映射 %1 -> %2").arg(aircraft.callsign, match.entry.title));
}

void MsfsTraffic::tellNoModel(const RemoteAircraft &aircraft, const ModelChoice &choice)
{
    logWarning(QStringLiteral("No local MSFS model match found for %1 [%2/%3/%4]")
                   .arg(aircraft.callsign, aircraft.typeCode, choice.airline, aircraft.livery));
    logWarning(QStringLiteral("Skipping remote spawn for %1 due to missing model match").arg(aircraft.callsign));
    emit mappingStatusChanged(
        tr("MSFS 无本地模型匹配：%1/%2/%3").arg(aircraft.typeCode, choice.airline, aircraft.livery));
}

/// Its object was made of another model. One still to come finds nobody, and is taken away then.
void MsfsTraffic::letGo(const QString &callsign)
{
    MsfsRemoteState *state = find(callsign);
    if (!state)
        return;
    const quint32 objectId = state->objectId;
    state->forgetObject();
    if (objectId != 0)
        m_session.removeRemoteAircraft(objectId, takeRequestId());
}

void MsfsTraffic::rematchAll()
{
    const QHash<QString, MsfsRemoteState> all = m_states; // tracking changes the table
    for (const MsfsRemoteState &state : all) {
        if (find(state.remote.callsign)) // not gone meanwhile
            track(state.remote);
    }
}

void MsfsTraffic::onLibraryReady()
{
    emit mappingStatusChanged(tr("MSFS 机库已扫描：%1 个模型").arg(m_models.modelCount(m_profile)));
    rematchAll();
}

// --- into the simulator ---

void MsfsTraffic::spawn(const QString &callsign)
{
    MsfsRemoteState *state = find(callsign);
    // A closed session would answer nothing at all, and the create would be pending for ever.
    if (!state || !m_session.isOpen() || state->match.entry.title.isEmpty() || state->createPending ||
        state->objectId != 0)
        return;
    state->requestId = takeRequestId();
    state->createPending = true;
    const MsfsRemoteState asked = *state;
    m_session.createRemoteAircraft(asked.requestId, asked.match.entry.title, liveryFor(asked.match, asked.remote),
                                   callsign, positionOf(asked.remote));
}

void MsfsTraffic::spawnAll()
{
    const QStringList callsigns = m_states.keys();
    for (const QString &callsign : callsigns)
        spawn(callsign);
}

void MsfsTraffic::forgetObjects()
{
    for (MsfsRemoteState &state : m_states)
        state.forgetObject();
}

QString MsfsTraffic::callsignOf(quint32 requestId) const
{
    for (auto state = m_states.cbegin(); requestId != 0 && state != m_states.cend(); ++state) {
        if (state->requestId == requestId)
            return state.key();
    }
    return {};
}

void MsfsTraffic::onCreated(quint32 requestId, quint32 objectId, const model::UserAircraftData &own)
{
    const QString callsign = callsignOf(requestId);
    MsfsRemoteState *state = find(callsign);
    if (!state) {
        logWarning(QStringLiteral("Received stale remote aircraft assignment: req=%1 object=%2, removing orphan object")
                       .arg(requestId)
                       .arg(objectId));
        m_session.removeRemoteAircraft(objectId, takeRequestId());
        return;
    }
    logInfo(QStringLiteral("MSFS remote aircraft created: %1 req=%2 object=%3")
                .arg(callsign, QString::number(requestId), QString::number(objectId)));
    state->objectId = objectId;
    state->createPending = false;
    const MsfsRemoteState created = *state;
    sendPosition(callsign); // he has moved since it was asked for
    applyVisuals(callsign);
    state = find(callsign);
    if (!state || state->objectId != objectId) // gone over a failure of these
        return;
    logSpawn(created, own);
    emit added(callsign);
}

void MsfsTraffic::logSpawn(const MsfsRemoteState &state, const model::UserAircraftData &own)
{
    const qint64 now = m_clock.steadyMs();
    const QString callsign = state.remote.callsign;
    m_spawnLines.removeIf([now](const auto &line) { return now - line.value() >= spawnLineIntervalMs; });
    if (m_spawnLines.contains(callsign))
        return;
    m_spawnLines.insert(callsign, now);
    const model::AircraftVisualState &remote = state.remote.visualState;
    const double distance = distanceMetres(own.latitude, own.longitude, remote.latitude, remote.longitude);
    logInfo(QStringLiteral("MSFS spawn debug: callsign=%1 object=%2 dist=%3m user=(%4,%5 alt=%6) remote=(%7,%8 alt=%9)")
                .arg(callsign, QString::number(state.objectId), QString::number(distance),
                     QString::number(own.latitude), QString::number(own.longitude), QString::number(own.altitudeMslM),
                     QString::number(remote.latitude), QString::number(remote.longitude),
                     QString::number(remote.altitudeMslM)));
}

/// Which one has failed isn't told, so all are released. Nothing is tried again here.
void MsfsTraffic::onCreateFailed()
{
    for (MsfsRemoteState &state : m_states) {
        if (!state.createPending || state.objectId != 0)
            continue;
        logWarning(QStringLiteral("Releasing pending remote create state after CREATE_OBJECT_FAILED: %1")
                       .arg(state.remote.callsign));
        state.forgetObject();
    }
}

// --- where and how ---

void MsfsTraffic::move(const RemoteAircraft &aircraft, const model::AircraftVisualState &place)
{
    moveTo(aircraft.callsign, place, aircraft.groundSpeed);
}

void MsfsTraffic::move(const RemoteAircraft &aircraft, const model::AircraftVisualState &place,
                       const model::VelocityVector &velocity)
{
    moveTo(aircraft.callsign, place, groundSpeedAfter(velocity, aircraft.groundSpeed));
}

/// Who he is and how he looks comes with add() and update() alone: of the two who tell positions, one may know neither
/// his type nor his configuration yet.
void MsfsTraffic::moveTo(const QString &callsign, const model::AircraftVisualState &place, double groundSpeed)
{
    MsfsRemoteState *state = find(callsign);
    if (!state)
        return;
    state->remote.visualState = place;
    state->remote.groundSpeed = groundSpeed;
    sendPosition(callsign);
}

void MsfsTraffic::sendPosition(const QString &callsign)
{
    const MsfsRemoteState *state = find(callsign);
    if (state && state->objectId != 0 && m_session.isOpen())
        m_session.updateRemoteAircraftPosition(state->objectId, positionOf(state->remote));
}

void MsfsTraffic::applyVisuals(const QString &callsign)
{
    const MsfsRemoteState *state = find(callsign);
    if (!state || state->objectId == 0 || !state->remote.hasConfiguration || !m_session.isOpen())
        return;
    const quint32 objectId = state->objectId;
    const model::AircraftConfiguration configuration = state->remote.configuration;
    if (configuration.onGround)
        sendPosition(callsign);
    if (m_profile == MsfsRuntimeProfile::Msfs2024) // takes none from a client
        return;
    for (const Visual &visual : visualsOf(configuration))
        m_session.setObjectDataValue(objectId, visual.key, visual.value);
}

} // namespace tarvo::simulator::msfs
