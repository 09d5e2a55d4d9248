#pragma once

#include "traffic/ClientArguments.h"

#include <functional>
#include <memory>

namespace tarvo {
class AppConfig;
}
namespace tarvo::network {
class SwiftAircraftIcaoService;
}
namespace tarvo::simulator {
class Simulator;
}

namespace tarvo::bench {

/// Makes what speaks to the simulator. Both arguments outlive it.
using MakeSimulator = std::function<std::shared_ptr<simulator::Simulator>(
    AppConfig &config, const network::SwiftAircraftIcaoService &types)>;

/// Runs the client as the program composes it, pages' models included, without its windows: waits for X-Plane, connects
/// as a pilot, and ends with the connection. Gives the exit code. Needs a QCoreApplication.
int runClient(const ClientArguments &arguments);
/// The same with another simulator than X-Plane.
int runClient(const ClientArguments &arguments, const MakeSimulator &makeSimulator);

} // namespace tarvo::bench
