#include "simulator/xplane/XPlaneAltitudes.h"

#include "common/Units.h"
#include "model/UserAircraftData.h"
#include "simulator/Simulator.h"

#include <cmath>

namespace tarvo::simulator::xplane {

namespace {

constexpr int xplane12 = 120000;
constexpr double standardPressure = 1013.25; // hectopascal
constexpr double feetPerHectopascal = 30.0;
constexpr double fullShiftWithin = 3000; // feet
constexpr double noShiftBeyond = 6000;   // feet

double mslFeet(const model::UserAircraftData &own)
{
    return own.altitudeMslM * common::feetPerMetre;
}

} // namespace

// The next two look swapped, and are so on purpose: the network expects each value in the other's field.

double pressureAltitudeFeet(const model::UserAircraftData &own, int version)
{
    return version >= xplane12 ? mslFeet(own) + own.temperatureError : mslFeet(own);
}

double trueAltitudeFeet(const model::UserAircraftData &own, int version)
{
    if (version >= xplane12)
        return own.altitudePressure;
    return mslFeet(own) + (standardPressure - own.qnh) * feetPerHectopascal;
}

double adjustRemoteAltitude(double altitudeFeet, const model::UserAircraftData &own, int version)
{
    if (version < xplane12)
        return altitudeFeet;
    const double apart = std::abs(mslFeet(own) + own.temperatureError - altitudeFeet);
    if (!(apart <= noShiftBeyond)) // NaN too: without an own altitude nothing is shifted
        return altitudeFeet;
    const double factor = apart <= fullShiftWithin ? 1.0 : (apart - fullShiftWithin) / -fullShiftWithin + 1.0;
    return altitudeFeet - own.temperatureError * factor;
}

SimulatorType simulatorTypeOf(int version)
{
    if (version >= xplane12)
        return SimulatorType::XPlane12;
    if (version > 109999)
        return SimulatorType::XPlane11;
    if (version >= 100000)
        return SimulatorType::XPlane10;
    return SimulatorType::Unknown;
}

} // namespace tarvo::simulator::xplane
