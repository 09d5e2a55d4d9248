#include "practice/flight/AircraftState.h"

#include <cmath>

namespace tarvo::practice {

double AircraftState::groundSpeed() const
{
    return std::hypot(eastVelocity, northVelocity);
}

} // namespace tarvo::practice
