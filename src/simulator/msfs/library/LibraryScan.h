#pragma once

#include "simulator/msfs/library/InstallDiscovery.h"
#include "simulator/msfs/library/ModelTables.h"

#include <atomic>

namespace tarvo::simulator::msfs {

/// What a scan and those who wait for it have in common.
struct ScanWatch
{
    std::atomic<bool> isStopped = false;
    std::atomic<int> files = 0; ///< aircraft.cfg files read so far
};

/// Finds and reads everything that is installed. It never fails: what is missing, broken or unreadable costs what it
/// holds. After a stop the tables are empty.
ModelTables scanLibrary(const LibraryPlaces &places, ScanWatch &watch);

} // namespace tarvo::simulator::msfs
