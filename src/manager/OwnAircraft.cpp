#include "manager/OwnAircraft.h"

#include "common/Clock.h"
#include "manager/Plausible.h"
#include "manager/SessionContext.h"
#include "simulator/Simulator.h"

namespace tarvo::manager {

using simulator::Simulator;

namespace {
constexpr int watchIntervalMs = 500;
constexpr quint32 lowestFrequency = 100'000; ///< kHz; a radio message names its frequency without the first digit
constexpr qint64 wholeAfterMs = 1500;        ///< so long after the first live sample every value has been told
} // namespace

OwnAircraft::OwnAircraft(SessionContext &session, QObject *parent)
    : QObject(parent), m_session(session), m_watchdog(this)
{
    m_watchdog.setObjectName(QStringLiteral("dataWatchdog"));
    m_watchdog.setInterval(watchIntervalMs);
    connect(&m_watchdog, &QTimer::timeout, this, &OwnAircraft::onWatchdog);
}

void OwnAircraft::startOver()
{
    const Simulator *simulator = m_session.simulator.get();
    m_connections.add({
        connect(simulator, &Simulator::userAircraftDataChanged, this, &OwnAircraft::onUserAircraftData),
        connect(simulator, &Simulator::userAircraftConfigDataChanged, this, &OwnAircraft::onConfigData),
        connect(simulator, &Simulator::radioStackStateChanged, this, &OwnAircraft::onRadioStackState),
        connect(simulator, &Simulator::simConnectionStateChanged, this, &OwnAircraft::onConnectionState),
        connect(simulator, &Simulator::simPausedStateChanged, this, &OwnAircraft::onPausedState),
    });
    m_watchdog.start();
    m_data = {};
    m_watch = {};
    m_transmitFrequencies.clear();
    m_trueAltitudeFeet = 0;
    m_pressureAltitudeFeet = 0;
    announceState();
}

// --- what the simulator says ---

void OwnAircraft::onUserAircraftData(const model::UserAircraftData &data)
{
    // A sample that differs by implausible values alone isn't new: it must not keep a dead simulator alive.
    const model::UserAircraftData sample = plausible(data, m_data.aircraft);
    if (sample == m_data.aircraft)
        return;
    m_data.aircraft = sample;
    const bool becameValid = m_watch.addSample(sample, m_session.clock.wallMs());
    rememberPosition();
    if (becameValid)
        emit stateChanged(true);
    announceData();
}

void OwnAircraft::onConfigData(const model::UserAircraftConfigData &data)
{
    const model::UserAircraftConfigData sample = plausible(data, m_data.config);
    if (sample == m_data.config)
        return;
    m_data.config = sample;
    rememberPosition();
    announceData();
}

void OwnAircraft::onRadioStackState(const model::RadioStackState &state)
{
    const model::RadioStackState told = plausible(state, m_data.radio);
    if (told == m_data.radio)
        return;
    m_data.radio = told;
    m_transmitFrequencies.clear();
    const auto transmitOn = [this](bool enabled, quint32 frequency) {
        if (enabled && frequency >= lowestFrequency)
            m_transmitFrequencies.append(frequency);
    };
    transmitOn(told.com1TransmitEnabled, told.com1Frequency);
    transmitOn(told.com2TransmitEnabled, told.com2Frequency);
    rememberPosition();
    emit radioChanged(told);
}

void OwnAircraft::onConnectionState(bool connected)
{
    if (connected)
        m_watch.simulatorConnected();
    else
        m_watch.simulatorDisconnected();
    announceState();
}

void OwnAircraft::onPausedState(bool paused)
{
    if (paused == m_data.simPaused)
        return;
    m_data.simPaused = paused;
    announceData();
}

void OwnAircraft::onWatchdog()
{
    const qint64 now = m_session.clock.wallMs();
    if (m_data.simPaused)
        m_watch.keepAlive(now); // nothing moves in a pause, and so nothing is told
    else if (m_watch.expire(now))
        announceState();
}

void OwnAircraft::announceState()
{
    rememberPosition();
    emit stateChanged(m_watch.isValid());
    announceData();
}

void OwnAircraft::announceData()
{
    SimulatorData data = m_data;
    data.simConnected = m_watch.isValid();
    emit dataUpdated(data);
}

// --- what is reported ---

OwnPosition OwnAircraft::position()
{
    rememberPosition();
    OwnPosition position = m_isLost && m_lastLive ? *m_lastLive : currentPosition();
    position.callsign = m_session.info.callsign;
    position.observer = m_session.info.observer;
    return position;
}

void OwnAircraft::onSessionBegan()
{
    m_lastLive.reset();
    m_isLost = false;
    rememberPosition();
}

OwnPosition OwnAircraft::currentPosition()
{
    if (const std::shared_ptr<Simulator> simulator = m_session.simulator) {
        m_trueAltitudeFeet = plausibleAltitude(simulator->trueAltitudeFeet(), m_trueAltitudeFeet);
        m_pressureAltitudeFeet = plausibleAltitude(simulator->pressureAltitudeFeet(), m_pressureAltitudeFeet);
    }
    return {.callsign = {},
            .observer = false,
            .aircraft = m_data.aircraft,
            .radio = m_data.radio,
            .onGround = m_data.config.onGround,
            .paused = m_data.simPaused,
            .trueAltitudeFeet = m_trueAltitudeFeet,
            .pressureAltitudeFeet = m_pressureAltitudeFeet};
}

void OwnAircraft::rememberPosition()
{
    if (!isAlive()) {
        m_isLost = true;
        m_backSinceMs.reset();
        return;
    }
    if (m_isLost) {
        const qint64 now = m_session.clock.wallMs();
        if (!m_backSinceMs)
            m_backSinceMs = now;
        if (now - *m_backSinceMs < wholeAfterMs)
            return;
        m_isLost = false;
    }
    m_lastLive = currentPosition();
    m_lastLive->paused = true; // it is reported of an aircraft that is held where it is
}

} // namespace tarvo::manager
