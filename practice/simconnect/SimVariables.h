#pragma once

#include "practice/flight/AircraftState.h"
#include "practice/simconnect/SimUnits.h"

#include <QByteArray>
#include <QHash>

#include <span>

namespace tarvo::practice {

/// One of the simulation variables, and where an aircraft has it.
struct SimVariable
{
    const char *name;
    Quantity quantity;
    double (*read)(const AircraftState &state); ///< in the natural unit; null for texts and waypoints
};

/// All that the stand-in knows.
std::span<const SimVariable> simVariables();
/// Index in simVariables(), or -1. Upper and lower case are one.
int simVariableIndex(const QByteArray &name);

/// What was written to an aircraft. A written value stands until the flight's own value of that variable changes, as a
/// switch stays where it was put until the pilot's hand moves it.
class VariableWrites
{
public:
    /// Stores a write, in the natural unit.
    void write(int index, double value, const AircraftState &state);
    double value(int index, const AircraftState &state) const;
    bool contains(int index) const { return m_writes.contains(index); }
    /// Forgets the writes that the flight has overtaken.
    void settle(const AircraftState &state);

private:
    struct Write
    {
        double value = 0;
        double flightValue = 0; ///< the flight's value when it was written
    };

    QHash<int, Write> m_writes;
};

} // namespace tarvo::practice
