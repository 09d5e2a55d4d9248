#pragma once

#include "common/Clock.h"
#include "simulator/msfs/session/SimConnectError.h"
#include "simulator/msfs/simvar/MsfsRuntimeProfile.h"
#include "simulator/msfs/simvar/SimKey.h"
#include "simulator/msfs/simvar/UpdateGroup.h"

#include <QObject>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>

#include <memory>

namespace tarvo::simulator::msfs {

class SimConnectBinding;
struct AssignedObjectMessage;
struct EventMessage;
struct ExceptionMessage;
struct InputEventValueMessage;
struct InputEventsMessage;
struct ObjectDataMessage;
struct OpenMessage;
struct OtherMessage;
struct QuitMessage;
struct TypedObjectMessage;

/// Where another aircraft is put. Heights are feet here and only here.
struct RemotePosition
{
    double latitude = 0.0;     ///< degrees
    double longitude = 0.0;    ///< degrees
    double altitudeFeet = 0.0; ///< above mean sea level
    double pitch = 0.0;        ///< degrees
    double bank = 0.0;         ///< degrees
    double heading = 0.0;      ///< degrees true
    bool onGround = false;
    double speedKnots = 0.0; ///< a negative one counts as 0

    bool operator==(const RemotePosition &) const = default;
};

/// The one talker to SimConnect: opens it, pumps its messages twenty times a second, owns every id, and tells what came
/// as signals with plain values. Main thread only. Whoever hears a signal may close it and open it again, but not
/// destroy it.
class SimConnectSession : public QObject
{
    Q_OBJECT

public:
    /// Over that binding, or over the program's one where it is null. The clock outlives it.
    explicit SimConnectSession(std::shared_ptr<SimConnectBinding> binding, QObject *parent = nullptr,
                               const common::Clock &clock = common::systemClock());
    /// Closes. An open one raises disconnected() here as well: an owner that is going lets go of the signals before.
    ~SimConnectSession() override;

    /// True when the session is open afterwards; otherwise errorOccurred told why, or whoever heard of it has closed
    /// it. connected() is raised inside.
    bool open();
    /// Nothing when it is closed. disconnected() is raised inside.
    void close();
    bool isOpen() const;

    void registerDefinitions();
    void subscribeGroup(UpdateGroup group);
    void unsubscribeGroup(UpdateGroup group);
    void requestGroupOnce(UpdateGroup group);
    void enumerateInputEvents();

    /// Writes to the pilot's own aircraft; a failure is logged. `value` in the unit of a sample.
    void setDataValue(SimKey key, const QVariant &value);
    /// Writes to another object; also rows that are never read.
    void setObjectDataValue(quint32 objectId, SimKey key, const QVariant &value);
    void sendCommand(CommandKey key, quint32 data);

    /// Only submits: remoteAircraftCreated comes later, or remoteAircraftCreateFailed without an id.
    void createRemoteAircraft(quint32 requestId, const QString &containerTitle, const QString &livery,
                              const QString &callsign, const RemotePosition &position);
    void removeRemoteAircraft(quint32 objectId, quint32 requestId);
    void updateRemoteAircraftPosition(quint32 objectId, const RemotePosition &position);

    /// Outlives close().
    void setTrafficEnabled(bool enabled);
    /// Metres, at most 200,000; outlives close().
    void setTrafficRadius(quint32 radius);

    /// Unknown while it is closed.
    MsfsRuntimeProfile runtimeProfile() const { return m_profile; }

signals:
    void connected();
    void disconnected();
    void errorOccurred(tarvo::simulator::msfs::SimConnectError error, const QString &message);
    /// A sample of one group: data keys of the table, converted values.
    void dataReceived(tarvo::simulator::msfs::UpdateGroup group, const QVariantMap &data);
    void msfsVersionDetected(const QString &version);
    void simConnectVersionDetected(const QString &version);
    void runtimeProfileDetected(tarvo::simulator::msfs::MsfsRuntimeProfile profile);
    void remoteAircraftCreated(quint32 requestId, quint32 objectId);
    void remoteAircraftCreateFailed();
    void remoteAircraftRemoved(quint32 requestId, quint32 objectId);
    /// Every aircraft in range; the rows of Simulator::trafficSnapshotChanged.
    void trafficSnapshotReceived(const QVariantList &contacts);
    void userAircraftTitleDetected(const QString &containerTitle);
    void inputEventValueChanged(const QString &name, double value);

private:
    struct Parts;

    void pump();
    void receive(const OtherMessage &) {}
    void receive(const ExceptionMessage &message);
    void receive(const OpenMessage &message);
    void receive(const QuitMessage &message);
    void receive(const EventMessage &message);
    void receive(const ObjectDataMessage &message);
    void receive(const TypedObjectMessage &message);
    void receive(const AssignedObjectMessage &message);
    void receive(const InputEventsMessage &message);
    void receive(const InputEventValueMessage &message);
    void tellBroken(qsizetype size);
    void setRuntimeProfile(MsfsRuntimeProfile profile, const QString &reason);
    void startTraffic();

    std::unique_ptr<Parts> m_parts; ///< what knows SimConnect's own structures
    QTimer m_dispatchTimer;
    MsfsRuntimeProfile m_profile = MsfsRuntimeProfile::Unknown;
    quint32 m_openings = 0; ///< how often it was opened
};

} // namespace tarvo::simulator::msfs
