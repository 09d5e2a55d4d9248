#pragma once

namespace tarvo::model {

/// Where an aircraft is and how it lies.
struct AircraftVisualState
{
    double latitude = 0;       ///< degrees
    double longitude = 0;      ///< degrees
    double altitudeMslM = 0;   ///< metres
    double altitudeAglM = 0;   ///< metres
    double pitch = 0;          ///< degrees
    double heading = 0;        ///< degrees
    double bank = 0;           ///< degrees
    double noseWheelAngle = 0; ///< degrees

    bool operator==(const AircraftVisualState &) const = default;
};

} // namespace tarvo::model
