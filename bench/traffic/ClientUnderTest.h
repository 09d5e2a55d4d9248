#pragma once

#include "traffic/ClientArguments.h"

namespace tarvo::bench {

/// Runs the client as the program composes it, pages' models included, without its windows: waits for X-Plane, connects
/// as a pilot, and ends with the connection. Gives the exit code. Needs a QCoreApplication.
int runClient(const ClientArguments &arguments);

} // namespace tarvo::bench
