#pragma once

#include "practice/flight/AircraftState.h"
#include "practice/simconnect/SimVariables.h"

#include <QByteArray>

namespace tarvo::practice {

/// An aircraft in the simulator, as clients may read and write it.
struct SimObject
{
    quint32 id = 0;
    QByteArray title;      ///< its model
    QByteArray tailNumber; ///< "ATC ID"
    AircraftState state;
    VariableWrites writes;

    /// In the variable's natural unit.
    double value(int variable) const { return writes.value(variable, state); }
};

} // namespace tarvo::practice
