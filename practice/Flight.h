#pragma once

#include "practice/AircraftState.h"

#include <QString>

#include <vector>

namespace tarvo::practice {

/// One flight at Beijing Capital, over and over: engine start, taxi, take-off from runway 36R, a left circuit, landing,
/// taxi back, shutdown. Position, velocity and acceleration are continuous over the whole loop, and the velocities are
/// the exact derivatives of the position.
class Flight
{
public:
    Flight();

    /// Seconds of one loop.
    double duration() const;
    /// The aeroplane `seconds` after the start. A pure function; any finite number is taken modulo the duration.
    AircraftState at(double seconds) const;
    /// What the pilot is doing then, in English, such as "downwind".
    QString phaseAt(double seconds) const;
    /// Seconds from the start of the loop to the start of the named phase, such as "take-off"; -1 for an unknown name.
    double startOf(const QString &phase) const;

private:
    struct Knot;
    struct Switch;

    double wrapped(double seconds) const;

    std::vector<Knot> m_knots;      ///< one a second; control points of a closed uniform cubic B-spline
    std::vector<Switch> m_switches; ///< what is on and off, in order of time

public:
    Flight(const Flight &) = delete;
    Flight &operator=(const Flight &) = delete;
    ~Flight();
};

} // namespace tarvo::practice
