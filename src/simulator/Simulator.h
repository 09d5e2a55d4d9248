#pragma once

#include "model/Controller.h"
#include "model/RadioStackState.h"
#include "model/RemoteAircraft.h"
#include "model/UserAircraftConfigData.h"
#include "model/UserAircraftData.h"
#include "model/VelocityVector.h"

#include <QList>
#include <QObject>
#include <QVariantList>

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
/// raises aircraftAddedToSim once the object exists, after removeAircraft aircraftRemovedFromSim. The three state
/// signals are raised only on a change.
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
    virtual void setCom2Frequency(quint32 freq) = 0;
    virtual void transponderIdent() = 0;
    /// Standby to mode C or back.
    virtual void transponderModeToggle() = 0;

public:
    virtual void addAircraft(const model::RemoteAircraft &aircraft) = 0;
    virtual void updateAircraftConfiguration(const model::RemoteAircraft &aircraft) = 0;
    virtual void removeAircraft(const model::RemoteAircraft &aircraft, const QString &reason) = 0;
    virtual void removeAllAircraft() = 0;
    virtual void setControllers(const QList<model::Controller> &controllers) = 0;
    virtual void clearControllers() = 0;
    virtual void positionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state) = 0;
    virtual void fastPositionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state,
                                    const model::VelocityVector &positionalVelocity,
                                    const model::VelocityVector &rotationalVelocity) = 0;
    virtual void aircraftHeartbeat(const QString &callsign) = 0;
    virtual void showRadioMessageSent(const QString &message) = 0;
    virtual void showRadioMessageReceived(const QString &from, const QString &message, bool direct) = 0;
    /// `colour`: 24-bit RGB.
    virtual void showNotification(const QString &message, int colour) = 0;
    virtual void showPrivateMessageSent(const QString &to, const QString &message) = 0;
    virtual void showPrivateMessageReceived(const QString &from, const QString &message) = 0;
    virtual void networkConnected(const QString &callsign, const QString &selcal, bool observer) = 0;
    virtual void networkDisconnected() = 0;
    /// `radio`: 1 or 2. An empty callsign means that no station is tuned.
    virtual void setStationCallsign(int radio, const QString &callsign) = 0;
    virtual void selcalAlert() = 0;
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
    void simConnectionStateChanged(bool connected);
    void simConnectionFailed(const QString &message);
    void userAircraftDataChanged(const tarvo::model::UserAircraftData &data);
    void userAircraftConfigDataChanged(const tarvo::model::UserAircraftConfigData &data);
    void radioStackStateChanged(const tarvo::model::RadioStackState &radioStack);
    void replayModeDetected();
    void radioMessageSent(const QString &message);
    void privateMessageSent(const QString &to, const QString &message);
    void forceDisconnect(const QString &reason);
    void aircraftAddedToSim(const QString &callsign);
    void aircraftRemovedFromSim(const QString &callsign);
    void simPausedStateChanged(bool paused);
    void nngSocketError(const QString &error);
    void requestStationInfo(const QString &callsign);
    void invalidPluginVersion();
    void pluginVersionChecked(bool valid);
    void cslValidationChecked(bool valid);
    void trafficMappingStatusChanged(const QString &status);
    void xplaneVersionUpdated(int version);
    void trafficSnapshotChanged(const QVariantList &contacts);
};

} // namespace tarvo::simulator
