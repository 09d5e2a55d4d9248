#pragma once

#include "simulator/msfs/session/SimConnectError.h"
#include "simulator/msfs/simvar/UpdateGroup.h"

#include <QObject>

#include <set>

namespace tarvo::simulator::msfs {

/// How the link to the simulator is doing. The numbers stand in log lines.
enum class ConnectionState : quint32
{
    Idle = 0,        ///< nothing asked for yet
    Connecting = 1,  ///< the session is to be opened; no data yet
    Connected = 2,   ///< positions of the own aircraft come
    Degraded = 3,    ///< connected, but a group of data no longer comes
    Disconnected = 4 ///< the link went or failed; waits for requestConnect()
};

/// The one answer to how the link is doing. It is told what happens and raises what follows; time-outs are its
/// caller's. An unexpected call is a warning in the log and changes nothing, except that a failure always counts.
class ConnectionStateMachine : public QObject
{
    Q_OBJECT

public:
    static constexpr qint32 maximumAttempts = 5;

    explicit ConnectionStateMachine(QObject *parent = nullptr);

    /// Accepted from Idle and Disconnected alone; elsewhere the count of attempts stays, too.
    void requestConnect(bool resetAttempts);
    /// The session is open. Changes nothing: only data tell that the simulator is there.
    void onConnected();
    /// A sample of the position group.
    void onDataReceived();
    void onDataGroupTimeout(UpdateGroup group);
    void onDataGroupRecovered(UpdateGroup group);
    /// The session has closed.
    void onDisconnected();
    void onError(SimConnectError error);

    ConnectionState state() const { return m_state; }

signals:
    void stateChanged(tarvo::simulator::msfs::ConnectionState oldState,
                      tarvo::simulator::msfs::ConnectionState newState);
    /// Attempts are left.
    void shouldReconnect();
    /// None is left, or the error was one that no attempt mends.
    void maxReconnectAttemptsReached();

private:
    void transitionTo(ConnectionState newState);
    void stepToReconnect();

    ConnectionState m_state = ConnectionState::Idle;
    std::set<UpdateGroup> m_failedGroups; ///< timed out and not recovered
    qint32 m_attempts = 0;
};

} // namespace tarvo::simulator::msfs
