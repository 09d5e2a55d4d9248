#pragma once

#include "simulator/msfs/simconnect/SimConnectApi.h"

namespace tarvo::practice {

/// SimConnect's sixteen C functions. They check what a C program may get wrong, and hand the rest to the stand-in
/// that the handle belongs to.
simulator::msfs::SimConnectFunctions entryPoints();
/// The one of that name, such as "SimConnect_Open"; null for none of the sixteen.
void *entryPoint(const char *name);

} // namespace tarvo::practice
