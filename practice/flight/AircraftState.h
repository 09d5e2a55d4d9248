#pragma once

namespace tarvo::practice {

/// Knots in one metre per second, with the digits that the network's clients have for each other's fast positions.
/// X-Plane itself tells metres per second.
inline constexpr double knotsPerMetrePerSecond = 1.943844;

/// Everything about the aeroplane at one moment of its flight. A plain value; Flight::at() fills it.
struct AircraftState
{
    double latitude = 0;      ///< degrees
    double longitude = 0;     ///< degrees
    double altitudeM = 0;     ///< metres above mean sea level
    double heightM = 0;       ///< metres above the field; 0 on the ground
    double pitch = 0;         ///< degrees, nose up positive
    double heading = 0;       ///< degrees true, 0 to below 360
    double bank = 0;          ///< degrees, right wing down positive
    double eastVelocity = 0;  ///< metres per second
    double northVelocity = 0; ///< metres per second
    double upVelocity = 0;    ///< metres per second
    double rollRate = 0;      ///< radians per second about the long axis, right wing down positive
    double pitchRate = 0;     ///< radians per second about the wing axis, nose up positive
    double yawRate = 0;       ///< radians per second about the body's upright axis, nose right positive
    double noseWheel = 0;     ///< degrees, right positive
    double flaps = 0;         ///< 0 to 1
    double speedbrake = 0;    ///< 0 to 1
    bool speedbrakeArmed = false;
    bool gearDown = true;
    bool onGround = true;
    bool avionics = false;
    bool engine1 = false; ///< left, running
    bool engine2 = false; ///< right, running
    bool reverse = false; ///< both engines
    bool beacon = false;
    bool landingLights = false;
    bool taxiLights = false;
    bool navLights = false;
    bool strobes = false;
    bool modeC = false; ///< the pilot has set the transponder to report altitude

    bool operator==(const AircraftState &) const = default;

    /// Speed over the ground in metres per second.
    double groundSpeed() const;
};

} // namespace tarvo::practice
