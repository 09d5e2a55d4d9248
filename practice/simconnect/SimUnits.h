#pragma once

#include <QByteArray>

namespace tarvo::practice {

/// What a simulation variable measures; its natural unit stands beside it.
enum class Quantity
{
    Number,      ///< also switches and choices
    Ratio,       ///< 0 to 1
    Angle,       ///< degrees
    AngularRate, ///< radians per second
    Length,      ///< metres
    Speed,       ///< metres per second
    Pressure,    ///< hectopascal
    Temperature, ///< degrees Celsius
    Frequency,   ///< kHz
    Code,        ///< four digits as a decimal number
    Text,
    Waypoints
};

/// A unit in which a client may ask for a quantity, and the way there and back.
struct SimUnit
{
    const char *name;
    Quantity quantity;
    double (*fromNatural)(double);
    double (*toNatural)(double);
};

/// The unit of that name for the quantity; null when the quantity has none such. Upper and lower case are one.
const SimUnit *simUnit(const QByteArray &name, Quantity quantity);

} // namespace tarvo::practice
