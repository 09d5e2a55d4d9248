#pragma once

#include <QString>

#include <array>
#include <vector>

namespace tarvo::practice {

/// What varies smoothly along the flight. Places are in the runway's frame: metres from the threshold along the runway
/// and to the left of it.
enum Channel
{
    Along,
    Left,
    Height,     ///< metres above the field
    Angle,      ///< radians to the left of the runway's direction; grows by whole turns over a loop
    Pitch,      ///< degrees
    Bank,       ///< degrees, right wing down positive
    Steer,      ///< degrees of the nose wheel, right positive
    Flaps,      ///< 0 to 1
    Speedbrake, ///< 0 to 1
    channelCount
};

using Knot = std::array<double, channelCount>;

struct Phase
{
    QString name;
    double start = 0; ///< seconds
};

/// The flight as a pilot plans it: a control point each second, and when each phase begins.
struct CircuitPlan
{
    std::vector<Knot> knots;
    std::vector<Phase> phases;

    /// Start of the named phase in seconds; -1 for an unknown name.
    double startOf(const QString &phase) const;
};

/// Radians that Angle gains over the loop: two full turns to the left.
double angleOfLoop();

/// Plans stand to stand: taxi, take-off, left circuit, landing, taxi back.
CircuitPlan planCircuit();

} // namespace tarvo::practice
