#pragma once

#include <QtGlobal>

namespace tarvo::model {

/// Lights, engines and surfaces of the own aircraft.
struct UserAircraftConfigData
{
    bool strobesOn = false;
    bool landingLightsOn = false;
    bool taxiLightsOn = false;
    bool beaconOn = false;
    bool navLightsOn = false;
    qint32 engineCount = 0; ///< as the simulator says; only the first four engines are known below
    bool engine1Running = false;
    bool engine2Running = false;
    bool engine3Running = false;
    bool engine4Running = false;
    bool engine1Reversing = false;
    bool engine2Reversing = false;
    bool engine3Reversing = false;
    bool engine4Reversing = false;
    bool gearDown = false;
    double flapsRatio = 0;      ///< 0.0 to 1.0
    double speedbrakeRatio = 0; ///< 0.0 to 1.0
    bool speedbrakeArmed = false;
    bool onGround = false;

    bool operator==(const UserAircraftConfigData &) const = default;
};

} // namespace tarvo::model
