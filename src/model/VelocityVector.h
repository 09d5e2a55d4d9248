#pragma once

namespace tarvo::model {

/// Positional: east, up, north in metres per second. Rotational: pitch, heading, bank in radians per second.
struct VelocityVector
{
    double x = 0;
    double y = 0;
    double z = 0;

    bool operator==(const VelocityVector &) const = default;
};

} // namespace tarvo::model
