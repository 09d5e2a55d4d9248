#include "simulator/msfs/ConnectionStateMachine.h"

#include <QDebug>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvo::simulator::msfs {

using State = ConnectionState;

namespace {

struct Transition
{
    State from;
    State to;

    constexpr bool operator==(const Transition &) const = default;
};

constexpr Transition transitions[] = {
    {State::Idle, State::Connecting},         {State::Connecting, State::Connected},
    {State::Connecting, State::Disconnected}, {State::Connected, State::Degraded},
    {State::Connected, State::Disconnected},  {State::Degraded, State::Connected},
    {State::Degraded, State::Disconnected},   {State::Disconnected, State::Connecting},
};

bool isFatal(SimConnectError error)
{
    return error == SimConnectError::VersionMismatch || error == SimConnectError::AccessDenied;
}

/// Its number, for the log.
template <class Enum>
constexpr quint32 number(Enum value)
{
    return static_cast<quint32>(value);
}

} // namespace

ConnectionStateMachine::ConnectionStateMachine(QObject *parent) : QObject(parent)
{
    qInfo() << "ConnectionStateMachine initialized in Idle state";
}

void ConnectionStateMachine::transitionTo(State newState)
{
    if (std::ranges::find(transitions, Transition{m_state, newState}) == std::end(transitions)) {
        qWarning() << "Invalid state transition:" << number(m_state) << "->" << number(newState);
        return;
    }
    const State oldState = std::exchange(m_state, newState);
    qInfo() << "State transition:" << number(oldState) << "->" << number(newState);
    emit stateChanged(oldState, newState);
}

void ConnectionStateMachine::requestConnect(bool resetAttempts)
{
    if (m_state != State::Idle && m_state != State::Disconnected) {
        qWarning() << "Cannot request connect from state:" << number(m_state);
        return;
    }
    if (resetAttempts)
        m_attempts = 0;
    transitionTo(State::Connecting);
}

void ConnectionStateMachine::onConnected()
{
    if (m_state == State::Connecting)
        qDebug() << "SimConnect connected, waiting for data validation";
    else
        qWarning() << "Unexpected onConnected from state:" << number(m_state);
}

void ConnectionStateMachine::onDataReceived()
{
    if (m_state == State::Connecting) {
        transitionTo(State::Connected);
        m_attempts = 0;
    } else if (m_state == State::Degraded && m_failedGroups.empty()) {
        transitionTo(State::Connected);
    }
}

void ConnectionStateMachine::onDataGroupTimeout(UpdateGroup group)
{
    if (m_state == State::Connected) {
        m_failedGroups.insert(group);
        transitionTo(State::Degraded);
        qWarning() << "Data group timed out, entering Degraded state:" << number(group);
    } else if (m_state == State::Degraded) {
        m_failedGroups.insert(group);
        qWarning() << "Additional data group timed out:" << number(group);
    }
}

void ConnectionStateMachine::onDataGroupRecovered(UpdateGroup group)
{
    if (m_state != State::Degraded)
        return;
    m_failedGroups.erase(group);
    qInfo() << "Data group recovered:" << number(group);
    if (m_failedGroups.empty())
        transitionTo(State::Connected);
}

void ConnectionStateMachine::onDisconnected()
{
    stepToReconnect();
}

void ConnectionStateMachine::onError(SimConnectError error)
{
    qCritical() << "SimConnect error occurred:" << number(error);
    if (!isFatal(error)) {
        stepToReconnect();
        return;
    }
    transitionTo(State::Disconnected); // keeps the failed groups, on purpose
    m_attempts = maximumAttempts;
    emit maxReconnectAttemptsReached();
}

/// Counts and tells even where the state can't follow, such as in Idle, on purpose.
void ConnectionStateMachine::stepToReconnect()
{
    transitionTo(State::Disconnected);
    m_failedGroups.clear();
    if (m_attempts >= maximumAttempts) {
        qCritical() << "Max reconnect attempts reached, giving up";
        emit maxReconnectAttemptsReached();
        return;
    }
    ++m_attempts;
    qInfo() << "Triggering reconnect attempt" << m_attempts << "/" << maximumAttempts;
    emit shouldReconnect();
}

} // namespace tarvo::simulator::msfs
