#pragma once

#include "simulator/msfs/simvar/SimKey.h"

#include <QList>
#include <QVariant>

namespace tarvo::model {
struct AircraftConfiguration;
}

namespace tarvo::simulator::msfs {

/// One variable that shows how an aircraft looks, and what is written to it.
struct Visual
{
    SimKey key;
    QVariant value;

    bool operator==(const Visual &) const = default;
};

/// What a configuration tells, in the order of writing.
QList<Visual> visualsOf(const model::AircraftConfiguration &configuration);

} // namespace tarvo::simulator::msfs
