#pragma once

#include <QtGlobal>

namespace tarvo::bench {

/// What a running process has used so far.
struct ProcessCost
{
    double cpuSeconds = 0;  ///< of all its threads, in the program and in the system
    double residentMiB = 0; ///< memory it has in use now
};

/// Of the process with that id; zeros when there is none.
ProcessCost costOf(qint64 processId);

} // namespace tarvo::bench
