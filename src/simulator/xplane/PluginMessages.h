#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace tarvo::model {
struct AircraftVisualState;
struct Controller;
struct RemoteAircraft;
struct VelocityVector;
} // namespace tarvo::model

/// The messages to the X-Plane plugin, packed. Each is a MessagePack array of two: the name and an array of arguments.
/// Strings are UTF-8; angles are degrees, altitudes metres, ground speeds knots, all as float64.
namespace tarvo::simulator::xplane::message {

/// "VER": asks the plugin for its version.
QByteArray version();

/// "CSL" [[path...], false]: asks the plugin whether the model paths are of use to it.
QByteArray csl(const QStringList &paths);

/// "ADD" [callsign, airline, type, latitude, longitude, altitude, heading, bank, pitch]
QByteArray add(const model::RemoteAircraft &aircraft);

/// "ACCONF", 12 arguments: the callsign, and what is nil when unknown: full (true or nil), engines on, reversing, on
/// ground, flaps (float32, 0 to 1), gear down, beacon, landing, navigation, strobe and taxi lights.
QByteArray configuration(const model::RemoteAircraft &aircraft);

/// "DEL" [callsign, reason]
QByteArray remove(const QString &callsign, const QString &reason);

/// "DELALL" []
QByteArray removeAll();

/// "ATC" [[[callsign, real name, "118.275", 118275]...]]: the valid stations that have a frequency.
QByteArray controllers(const QList<model::Controller> &controllers);

/// "POS" [callsign, latitude, longitude, altitude, height, heading, bank, pitch, ground speed]
QByteArray position(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state);

/// "FSTPOS", 16 arguments: those of "POS" up to pitch, then the velocities x, y, z (metres per second) and rotations
/// x, y, z (radians per second), the nose wheel's angle and the ground speed.
QByteArray fastPosition(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state,
                        const model::VelocityVector &velocity, const model::VelocityVector &rotation);

/// "HB" [callsign]
QByteArray heartbeat(const QString &callsign);

/// "RDIOSENT" [message]
QByteArray radioSent(const QString &message);

/// "RDIORCVD" [from, message, direct]
QByteArray radioReceived(const QString &from, const QString &message, bool direct);

/// "NOTIF" [message, colour]; `colour`: 24-bit RGB
QByteArray notification(const QString &message, int colour);

/// "PRIVSENT" [to, message]
QByteArray privateSent(const QString &to, const QString &message);

/// "PRIVRCVD" [from, message]
QByteArray privateReceived(const QString &from, const QString &message);

/// "CONN" [callsign, SELCAL, observer]
QByteArray networkConnected(const QString &callsign, const QString &selcal, bool observer);

/// "DISCON" []
QByteArray networkDisconnected();

/// "STATION_CALLSIGN" [radio, callsign]; `radio`: 1 or 2
QByteArray stationCallsign(int radio, const QString &callsign);

} // namespace tarvo::simulator::xplane::message
