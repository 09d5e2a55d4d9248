#pragma once

#include "practice/flight/AircraftState.h"
#include "practice/flight/Circuit.h"

#include <QString>

#include <vector>

namespace tarvo::practice {

/// One flight at Beijing Capital, over and over; by default engine start, taxi, take-off from runway 36R, a left
/// circuit, landing, taxi back, shutdown. Position, velocity and acceleration are continuous over the whole loop, and
/// the velocities are the exact derivatives of the position.
class Flight
{
public:
    Flight();
    explicit Flight(const Pattern &pattern);

    /// Seconds of one loop.
    double duration() const;
    /// The aeroplane `seconds` after the start. A pure function; any finite number is taken modulo the duration.
    AircraftState at(double seconds) const;
    /// What the pilot is doing then; in the default flight "parked", "engine start", "taxi out", "line-up", "take-off",
    /// "climb", "crosswind", "downwind", "base", "final", "flare", "roll-out", "vacate", "taxi in" or "shutdown".
    QString phaseAt(double seconds) const;
    /// Seconds from the start of the loop to the start of the named phase; -1 for an unknown name.
    double startOf(const QString &phase) const;

private:
    struct Switching
    {
        double time = 0;
        bool AircraftState::*what = nullptr;
        bool on = false;
    };

    double wrapped(double seconds) const;
    void interpolate(double seconds, Knot &value, Knot &derivative) const;

    CircuitPlan m_plan;                  ///< its knots are the control points of a closed uniform cubic B-spline
    std::vector<Switching> m_switchings; ///< in order of time
    double m_east = 0;                   ///< metres of shift
    double m_north = 0;
};

} // namespace tarvo::practice
