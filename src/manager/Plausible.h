#pragma once

#include "model/RadioStackState.h"
#include "model/UserAircraftConfigData.h"
#include "model/UserAircraftData.h"

namespace tarvo::manager {

// A simulator may deliver anything. What is not a number, infinite or far beyond any aircraft stands neither on the
// wire nor on a page: each such field is what it was in `last`.

/// Feet, from the altitude operations of a simulator.
double plausibleAltitude(double feet, double last);
model::UserAircraftData plausible(model::UserAircraftData sample, const model::UserAircraftData &last);
model::UserAircraftConfigData plausible(model::UserAircraftConfigData sample,
                                        const model::UserAircraftConfigData &last);
model::RadioStackState plausible(model::RadioStackState state, const model::RadioStackState &last);

} // namespace tarvo::manager
