#pragma once

#include "model/RadioStackState.h"
#include "model/UserAircraftConfigData.h"
#include "model/UserAircraftData.h"

#include <QList>
#include <QObject>
#include <QVariantList>

namespace tarvo::model {
struct AircraftVisualState;
struct Controller;
struct RemoteAircraft;
struct VelocityVector;
} // namespace tarvo::model

namespace tarvo::simulator {

/// What a simulator is called on the network: the number goes into the login and the client information text.
enum class SimulatorType : quint8
{
    Unknown = 0,
    Msfs2020 = 1,
    Msfs2024 = 2,
    XPlane10 = 3,
    XPlane11 = 4,
    XPlane12 = 5
};

/// "MFS2020", "MFS2024", "XPlane10", "XPlane11", "XPlane12", else "Unknown".
QString simulatorTypeName(SimulatorType type);

/// The abstract simulator that the session logic talks to. Lives on the main thread, where all its signals are raised.
///
/// Every operation is accepted at any time; one with no meaning for a backend does nothing. After addAircraft a backend
/// raises aircraftAddedToSim once the object exists, after removeAircraft aircraftRemovedFromSim. The own aircraft, its
/// configuration and the radios are told on a change, and may be told again without one.
class Simulator : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

public slots:
    /// `code`: the four digits as a decimal number.
    virtual void setTransponderCode(int code) = 0;
    /// `freq`: kHz, such as 121800.
    virtual void setCom1Frequency(quint32 freq) = 0;
    /// `freq`: kHz, such as 121800.
    virtual void setCom2Frequency(quint32 freq) = 0;
    /// Presses the transponder's ident button.
    virtual void transponderIdent() = 0;
    /// Standby to mode C or back.
    virtual void transponderModeToggle() = 0;

public:
    /// Draws another pilot's aircraft at its visual state. aircraftAddedToSim tells when it is there.
    virtual void addAircraft(const model::RemoteAircraft &aircraft) = 0;
    /// Hands on what is known of the aircraft's configuration: by AircraftManager merged of all messages, by
    /// NetworkManager the last message alone.
    virtual void updateAircraftConfiguration(const model::RemoteAircraft &aircraft) = 0;
    /// Takes one aircraft away. `reason`: a word for the backend's log, such as "Stale". aircraftRemovedFromSim
    /// follows.
    virtual void removeAircraft(const model::RemoteAircraft &aircraft, const QString &reason) = 0;
    /// Takes every aircraft away.
    virtual void removeAllAircraft() = 0;
    /// Replaces the whole list of stations in the simulator; those without a frequency or not yet valid are left out.
    virtual void setControllers(const QList<model::Controller> &controllers) = 0;
    /// Empties that list.
    virtual void clearControllers() = 0;
    /// A slow position report, every few seconds. `state`: degrees, metres.
    virtual void positionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state) = 0;
    /// A fast position report, several in a second. `positionalVelocity`: x east, y up, z north, metres per second;
    /// `rotationalVelocity`: x pitch, y heading, z bank, radians per second.
    virtual void fastPositionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state,
                                    const model::VelocityVector &positionalVelocity,
                                    const model::VelocityVector &rotationalVelocity) = 0;
    /// The aircraft is still there, although nothing of it has changed.
    virtual void aircraftHeartbeat(const QString &callsign) = 0;
    /// Shows a radio text that the pilot has sent.
    virtual void showRadioMessageSent(const QString &message) = 0;
    /// Shows a radio text. `direct`: it calls the pilot's own callsign.
    virtual void showRadioMessageReceived(const QString &from, const QString &message, bool direct) = 0;
    /// Shows a text of the client's own. `colour`: 24-bit RGB, such as 0xff8000.
    virtual void showNotification(const QString &message, int colour) = 0;
    /// Shows a private text that the pilot has sent. `to`: a callsign.
    virtual void showPrivateMessageSent(const QString &to, const QString &message) = 0;
    /// Shows a private text. `from`: a callsign.
    virtual void showPrivateMessageReceived(const QString &from, const QString &message) = 0;
    /// The session is on the network. `selcal`: such as "AB-CD", or empty.
    virtual void networkConnected(const QString &callsign, const QString &selcal, bool observer) = 0;
    /// The session has left the network.
    virtual void networkDisconnected() = 0;
    /// `radio`: 1 or 2. An empty callsign means that no station is tuned.
    virtual void setStationCallsign(int radio, const QString &callsign) = 0;
    /// The pilot's own SELCAL code was called.
    virtual void selcalAlert() = 0;
    /// Unknown until the simulator has told its version.
    virtual SimulatorType simulatorType() const = 0;

public slots:
    /// Drops the link to the simulator, if any, and tries to connect anew.
    virtual void reconnectSimulator() = 0;

public:
    /// Feet, for the pressure field of position reports.
    virtual double pressureAltitudeFeet() const = 0;
    /// Feet, for the true altitude field of position reports.
    virtual double trueAltitudeFeet() const = 0;
    /// Where another aircraft that reports `altitudeFeet` is to be drawn, in feet.
    virtual double adjustRemoteAltitude(double altitudeFeet) const = 0;

signals:
    /// The link to the simulator came or went. False may come although no link was up, when the simulator shuts down.
    void simConnectionStateChanged(bool connected);
    /// An attempt to connect has ended in its time-out. `message`: for the pilot.
    void simConnectionFailed(const QString &message);
    /// The own aircraft's motion: what changed since it was last told. A NaN in it counts as a change.
    void userAircraftDataChanged(const tarvo::model::UserAircraftData &data);
    /// The own aircraft's lights, engines, gear and flaps.
    void userAircraftConfigDataChanged(const tarvo::model::UserAircraftConfigData &data);
    /// The own radios (kHz) and transponder.
    void radioStackStateChanged(const tarvo::model::RadioStackState &radioStack);
    /// A replay is running. Comes again with every report that says so, about once a second, not only at its beginning;
    /// its end is not told. No part of the session listens to it.
    void replayModeDetected();
    /// The pilot typed a radio text in the simulator; never empty.
    void radioMessageSent(const QString &message);
    /// The pilot typed a private text in the simulator; neither part is ever empty.
    void privateMessageSent(const QString &to, const QString &message);
    /// The simulator wants the session to leave the network. `reason`: for the pilot; may be empty.
    void forceDisconnect(const QString &reason);
    /// The aircraft is drawn now; the callsign is never empty.
    void aircraftAddedToSim(const QString &callsign);
    /// The aircraft is drawn no longer; the callsign is never empty.
    void aircraftRemovedFromSim(const QString &callsign);
    /// The simulator was paused or goes on.
    void simPausedStateChanged(bool paused);
    /// The message socket to the plugin could not be opened or dialled. `error`: English; attempts go on nevertheless.
    void nngSocketError(const QString &error);
    /// The pilot asked in the simulator for a station's information; the callsign is never empty.
    void requestStationInfo(const QString &callsign);
    /// The plugin is too old or told no version; pluginVersionChecked(false) follows.
    void invalidPluginVersion();
    /// The plugin told its version. `valid`: the client can work with it.
    void pluginVersionChecked(bool valid);
    /// The plugin told whether the configured model paths are of use to it; its trafficMappingStatusChanged came
    /// before.
    void cslValidationChecked(bool valid);
    /// How the models for other aircraft stand, in words for the pilot.
    void trafficMappingStatusChanged(const QString &status);
    /// X-Plane's internal version number: 120100 is 12.1.0, 115000 is 11.50. Never 0.
    void xplaneVersionUpdated(int version);
    /// All aircraft in the simulator, about once a second while a backend reports them; replaces the list told before.
    /// Each contact is a map with "objectId", "label", "atcId", "latitude" and "longitude" (degrees), "altitudeFeet",
    /// "headingTrue", "groundSpeedKnots", "onGround" and the lights "beaconOn", "navOn" and "strobeOn".
    void trafficSnapshotChanged(const QVariantList &contacts);
    /// The simulator's end of the link has begun anew and knows nothing of what it was given; raised behind
    /// simConnectionStateChanged(true).
    void restarted();
};

} // namespace tarvo::simulator
