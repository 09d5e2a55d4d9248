#pragma once

#include <QString>

namespace tarvo::model {
struct RemoteAircraft;
struct VelocityVector;
} // namespace tarvo::model

namespace tarvo::simulator::msfs {

struct RemotePosition;

/// Whether another aircraft is put on the ground. What its pilot tells holds, but not at 80 knots or more nor 20 metres
/// or more above ground; while he tells nothing, up to 1 metre above ground is on it.
bool isOnGround(const model::RemoteAircraft &aircraft);

/// Knots, 0 to 900, from a velocity in metres per second; `last` where it says nothing.
double groundSpeedAfter(const model::VelocityVector &velocity, double last);

/// Where the simulator is to put an aircraft. The one place where metres become feet.
RemotePosition positionOf(const model::RemoteAircraft &aircraft);

/// The three letters of a callsign such as "CSN1234"; empty for others, such as "N123AB".
QString callsignAirline(const QString &callsign);

/// Metres along the ground between two places in degrees.
double distanceMetres(double latitude1, double longitude1, double latitude2, double longitude2);

} // namespace tarvo::simulator::msfs
