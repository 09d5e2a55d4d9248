#pragma once

#include "simulator/msfs/LibraryWatch.h"
#include "simulator/msfs/MsfsRemoteState.h"

#include <QHash>
#include <QObject>

namespace tarvo::common {
class Clock;
}
namespace tarvo::model {
struct UserAircraftData;
struct VelocityVector;
} // namespace tarvo::model

namespace tarvo::simulator::msfs {

class MsfsAircraftLibrary;
class SimConnectSession;
struct ModelChoice;

/// The other pilots inside the simulator: picks a model of the library for each, has the simulator make an object of it
/// and fly it to where the pilot was last reported.
///
/// The simulator answers late, with the request's id, and a failure carries none; so a failure releases every request,
/// and an object that comes for nobody is taken away again. While the session is closed everything is remembered and
/// nothing asked of it.
class MsfsTraffic : public QObject
{
    Q_OBJECT

public:
    /// All three outlive this.
    MsfsTraffic(SimConnectSession &session, MsfsAircraftLibrary &library, const common::Clock &clock,
                QObject *parent = nullptr);

    void add(const model::RemoteAircraft &aircraft);
    /// What a pilot tells of his aircraft but its speed.
    void update(const model::RemoteAircraft &aircraft);
    /// `reason`: for the log; may be empty. removed() comes for an unknown callsign, too.
    void remove(const QString &callsign, const QString &reason);
    /// Raises nothing.
    void removeAll();
    /// A position of an unknown callsign is nothing.
    void move(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state);
    /// `velocity`: x east, y up, z north, metres per second.
    void move(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state,
              const model::VelocityVector &velocity);

    /// Whatever is known of the simulator. Chooses no model anew: with the link gone each pilot keeps the one he has,
    /// and rematchAll() follows when it is back.
    void setProfile(MsfsRuntimeProfile profile) { m_profile = profile; }
    MsfsRuntimeProfile profile() const { return m_profile; }
    /// Chooses every model anew; one that stays the same keeps its object.
    void rematchAll();
    /// Looks whether the library is ready, from now on.
    void checkLibrary() { m_library.check(); }
    /// The objects were those of a session that is closed.
    void forgetObjects();
    /// Has an object made for each pilot with a model and without one.
    void spawnAll();

    /// The simulator has made an object. `own`: for the log.
    void onCreated(quint32 requestId, quint32 objectId, const model::UserAircraftData &own);
    /// Nobody knows which of those under way it was.
    void onCreateFailed();

signals:
    void added(const QString &callsign);
    void removed(const QString &callsign);
    void mappingStatusChanged(const QString &status);

private:
    bool track(const model::RemoteAircraft &aircraft);
    void remember(const model::RemoteAircraft &aircraft);
    void store(const model::RemoteAircraft &aircraft, const ModelChoice &choice);
    void tellDecision(const model::RemoteAircraft &aircraft, const ModelChoice &choice);
    void tellModel(const model::RemoteAircraft &aircraft, const ModelChoice &choice);
    void tellNoModel(const model::RemoteAircraft &aircraft, const ModelChoice &choice);
    void letGo(const QString &callsign);
    void spawn(const QString &callsign);
    void moveTo(const QString &callsign, const model::AircraftVisualState &place, double groundSpeed);
    void sendPosition(const QString &callsign);
    void applyVisuals(const QString &callsign);
    void onLibraryReady();
    void logSpawn(const MsfsRemoteState &state, const model::UserAircraftData &own);
    QString callsignOf(quint32 requestId) const;
    MsfsRemoteState *find(const QString &callsign);
    quint32 takeRequestId();

    SimConnectSession &m_session;
    MsfsAircraftLibrary &m_models;
    const common::Clock &m_clock;
    LibraryWatch m_library;
    MsfsRuntimeProfile m_profile = MsfsRuntimeProfile::Unknown;
    QHash<QString, MsfsRemoteState> m_states;
    QHash<QString, qint64> m_spawnLines; ///< when a callsign had its last one, ms of a clock that never jumps
    quint32 m_nextRequestId = 1;
};

} // namespace tarvo::simulator::msfs
