// SimConnect.dll: the stand-in's entry points, and a simulator behind them for as long as it is loaded.
#include "practice/simconnect/MsfsOptions.h"
#include "practice/simconnect/MsfsStandIn.h"

namespace tarvo::practice {

namespace {
struct LoadedSimulator
{
    MsfsStandIn simulator;

    LoadedSimulator() { MsfsOptions::fromEnvironment().apply(simulator); }
};

const LoadedSimulator loaded;
} // namespace

} // namespace tarvo::practice
