#pragma once

#include "model/RadioStackState.h"
#include "model/UserAircraftConfigData.h"
#include "model/UserAircraftData.h"

namespace tarvo::manager {

/// The own aircraft's whole state, as the pages show it.
struct SimulatorData
{
    bool simConnected = false; ///< the simulator says so, or delivers live data
    model::UserAircraftData aircraft;
    model::UserAircraftConfigData config;
    model::RadioStackState radio;
    bool simPaused = false;
};

} // namespace tarvo::manager
