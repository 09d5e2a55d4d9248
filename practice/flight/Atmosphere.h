#pragma once

namespace tarvo::practice {

/// The air that the practice aeroplane flies in: 30.05 inches of mercury at sea level.
inline constexpr double seaLevelInHg = 30.05;
inline constexpr double hectopascalPerInHg = 33.8639;

/// Feet that an altimeter set to standard shows at that altitude (the standard atmosphere's formula).
double pressureAltitudeFt(double altitudeM);

} // namespace tarvo::practice
