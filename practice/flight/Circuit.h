#pragma once

#include "practice/flight/AircraftState.h"

#include <QString>

#include <array>
#include <span>
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

/// One piece of the way. The speed changes evenly over it, height and pitch evenly in time.
struct Leg
{
    const char16_t *phase; ///< begins here; null goes on with the phase before
    double length;         ///< metres of a straight, seconds of a hold at standstill, radius of a turn
    double turn;           ///< degrees, left positive; 0 is a straight
    double exitSpeed;      ///< metres per second
    double exitHeight;     ///< metres
    double exitPitch;      ///< degrees
};

/// A surface that starts to move some seconds after the start of a phase.
struct Move
{
    const char16_t *phase;
    double after; ///< seconds
    Channel channel;
    double target;
    double perSecond;
};

/// A switch that the pilot moves some seconds after the start of a phase.
struct Cue
{
    const char16_t *phase;
    double after; ///< seconds
    bool AircraftState::*what;
    bool on;
};

/// A flight that ends where it began, as it is written down. What the spans point to lives as long as the program.
struct Pattern
{
    std::span<const Leg> legs;
    std::span<const Move> moves;
    std::span<const Cue> cues;
    double startAlong = 0;  ///< metres
    double startLeft = 0;   ///< metres
    double startAngle = 0;  ///< radians to the left
    double startSpeed = 0;  ///< metres per second
    double startHeight = 0; ///< metres
    double startPitch = 0;  ///< degrees
    double east = 0;        ///< metres that all of it lies to the east of Flight's runway
    double north = 0;       ///< and to the north
};

/// A flight as a pilot plans it: a control point each second, and when each phase begins.
struct CircuitPlan
{
    std::vector<Knot> knots;
    std::vector<Phase> phases;
    double turned = 0; ///< radians that Angle gains over the loop: whole turns

    /// Start of the named phase in seconds; -1 for an unknown name.
    double startOf(const QString &phase) const;
};

/// Lays the pattern out. It must close: the last leg ends at the place, speed, height and direction of the start.
CircuitPlan planCircuit(const Pattern &pattern);

} // namespace tarvo::practice
