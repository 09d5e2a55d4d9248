#pragma once

#include <QtGlobal>

namespace tarvo::simulator::msfs {

/// Simulation variables that are asked for together. The value is also SimConnect's definition and request id of the
/// group, and what log lines show.
enum class UpdateGroup : quint8
{
    Position = 0,   ///< position, attitude, velocities
    Aircraft = 1,   ///< gear, flaps, spoilers, engines, lights
    Avionics = 2,   ///< radios, transponder, avionics power
    Environment = 3 ///< pressure, weather, on ground, pause
};

constexpr UpdateGroup updateGroups[] = {UpdateGroup::Position, UpdateGroup::Aircraft, UpdateGroup::Avionics,
                                        UpdateGroup::Environment};

} // namespace tarvo::simulator::msfs
