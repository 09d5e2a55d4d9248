#pragma once

#include "traffic/ClientArguments.h"
#include "traffic/LoadRun.h"

namespace tarvo::bench {

struct BareResult
{
    QString failure;     ///< empty when all is well
    double cpuShare = 0; ///< of one core
};

/// The yardstick: a program that reads the same lines from a socket and sends as many messages of the same size
/// through nng, and nothing else, with the same threads of nng's. Runs it in a process of its own, at the load's pace
/// and for as long. Needs a QCoreApplication.
BareResult measureBare(const Load &load);

/// That program. Ends with the connection; gives the exit code. Needs a QCoreApplication.
int runBareProgram(const ClientArguments &arguments);

} // namespace tarvo::bench
