#pragma once

#include "model/RadioStackState.h"
#include "model/UserAircraftConfigData.h"
#include "model/UserAircraftData.h"

namespace tarvo::manager {

// A simulator may deliver anything. A value that is not a number, infinite or far beyond any aircraft must reach
// neither the wire nor a page: the field keeps its value of `last`.

/// Feet, from the altitude operations of a simulator.
double plausibleAltitude(double feet, double last);
model::UserAircraftData plausible(model::UserAircraftData sample, const model::UserAircraftData &last);
model::UserAircraftConfigData plausible(model::UserAircraftConfigData sample,
                                        const model::UserAircraftConfigData &last);
model::RadioStackState plausible(model::RadioStackState state, const model::RadioStackState &last);

} // namespace tarvo::manager
