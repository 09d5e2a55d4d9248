#include "practice/flight/Atmosphere.h"

#include "common/Units.h"

#include <cmath>

namespace tarvo::practice {

namespace {

constexpr double standardInHg = 29.92126;
} // namespace

double pressureAltitudeFt(double altitudeM)
{
    return altitudeM * common::feetPerMetre + 145'366.45 * (1 - std::pow(seaLevelInHg / standardInHg, 0.190284));
}

} // namespace tarvo::practice
