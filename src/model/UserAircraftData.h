#pragma once

namespace tarvo::model {

/// The own aircraft's motion. Two samples differ if any field compares unequal; a NaN is unequal to itself, so a sample
/// that holds one always counts as changed.
struct UserAircraftData
{
    double latitude = 0;          ///< degrees
    double longitude = 0;         ///< degrees
    double altitudeMslM = 0;      ///< metres, true altitude above mean sea level
    double altitudeAglM = 0;      ///< metres above ground
    double altitudePressure = 0;  ///< feet, pressure altitude as the simulator reports it
    double qnh = 0;               ///< hectopascal at sea level
    double temperatureError = 0;  ///< feet, altimeter temperature error; X-Plane only, else 0
    double groundSpeed = 0;       ///< knots
    double pitch = 0;             ///< degrees
    double heading = 0;           ///< degrees
    double bank = 0;              ///< degrees
    double latitudeVelocity = 0;  ///< metres per second, north
    double altitudeVelocity = 0;  ///< metres per second, up
    double longitudeVelocity = 0; ///< metres per second, east
    double pitchVelocity = 0;     ///< radians per second
    double headingVelocity = 0;   ///< radians per second
    double bankVelocity = 0;      ///< radians per second
    double noseWheelAngle = 0;    ///< degrees

    bool operator==(const UserAircraftData &) const = default;
};

} // namespace tarvo::model
