#pragma once

#include <QVariant>

namespace tarvo::simulator::msfs {

/// What lies between a simulation variable on the wire and its value in a sample.
enum class SimVarConversion : quint8
{
    None = 0,
    FrequencyBcd16 = 1,   ///< four digits after the 1 of "122.85", a nibble each <-> MHz
    Bco16 = 2,            ///< a code's four digits, a nibble each <-> the code as a decimal number
    ReverserRatio = 3,    ///< percent <-> true when above 0.01; true is written as 100
    RadiansToDegrees = 4, ///< radians <-> degrees
    Position16K = 5,      ///< 0 to 16383 <-> 0 to 1
    PercentOrRatio = 6,   ///< percent when above 1, or else a ratio -> 0 to 1; written as 0 to 1
};

/// The value of a sample for what was read from the wire.
QVariant fromWire(SimVarConversion conversion, const QVariant &value);
/// What goes over the wire for a value as samples have it.
QVariant toWire(SimVarConversion conversion, const QVariant &value);

} // namespace tarvo::simulator::msfs
