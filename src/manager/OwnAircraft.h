#pragma once

#include "manager/ConnectionList.h"
#include "manager/PositionReports.h"
#include "manager/SimulatorData.h"
#include "manager/SimulatorDataWatch.h"

#include <QList>
#include <QObject>
#include <QTimer>

#include <optional>

namespace tarvo::manager {

struct SessionContext;

/// The own aircraft as the simulator tells it: the newest samples, whether they are alive, and what is reported of
/// them. Main thread only.
class OwnAircraft : public QObject
{
    Q_OBJECT

public:
    explicit OwnAircraft(SessionContext &session, QObject *parent = nullptr);

    /// Listens to the session's simulator, a new one, and forgets what another has told. Raises both signals of the
    /// state.
    void startOver();
    /// Hears nothing more until it starts over.
    void stopListening() { m_connections.clear(); }

    /// A live sample has come, and the data are alive: a pilot may connect.
    bool isReadyForPilot() const { return m_watch.isReadyForPilot(); }
    const SimulatorData &data() const { return m_data; }
    const QList<uint> &transmitFrequencies() const { return m_transmitFrequencies; }

    /// What a report says now. Of a simulator that is lost that is what it told last, as if it were paused: nobody is
    /// sent to the origin of the world because data dry up. Nor is half a record reported when it comes back, whose
    /// values come one by one, some of them once a second.
    OwnPosition position();
    /// A session begins; what was before says nothing about its aircraft.
    void onSessionBegan();

signals:
    /// `connected`: the simulator says so, or delivers live data.
    void stateChanged(bool connected);
    void dataUpdated(const tarvo::manager::SimulatorData &data);
    void radioChanged(const tarvo::model::RadioStackState &state);

private:
    void onUserAircraftData(const model::UserAircraftData &data);
    void onConfigData(const model::UserAircraftConfigData &data);
    void onRadioStackState(const model::RadioStackState &state);
    void onConnectionState(bool connected);
    void onPausedState(bool paused);
    void onWatchdog();
    void announceState();
    void announceData();
    bool isAlive() const { return m_watch.isReadyForPilot() && isLive(m_data.aircraft); }
    OwnPosition currentPosition();
    void rememberPosition();

    SessionContext &m_session;
    ConnectionList m_connections;
    SimulatorData m_data; ///< last samples; `simConnected` is filled when it is announced
    SimulatorDataWatch m_watch;
    QTimer m_watchdog;
    QList<uint> m_transmitFrequencies; ///< kHz
    double m_trueAltitudeFeet = 0;     ///< the last plausible one, as below
    double m_pressureAltitudeFeet = 0;
    std::optional<OwnPosition> m_lastLive; ///< of this session
    bool m_isLost = false;                 ///< until its values are all back
    std::optional<qint64> m_backSinceMs;   ///< of a lost one: since when it is alive again
};

} // namespace tarvo::manager
