#pragma once

#include "traffic/ClientArguments.h"

#include <QString>

#include <cstdint>

namespace tarvo::bench {

/// One waypoint that the client has written, as its file holds it.
struct WrittenWaypoint
{
    double latitude = 0;
    std::int64_t ns = 0; ///< of the one clock
    std::int32_t pilot = -1;
    std::int32_t unused = 0;
};

/// The file of waypoints in the client's folder.
inline QString waypointFile(const QString &folder)
{
    return folder + QStringLiteral("/waypoints.bin");
}

/// What the client says on its standard output when everybody flies.
inline constexpr char completeWord[] = "complete\n";

/// Runs the client with Microsoft Flight Simulator, which is a stand-in in the same process; ends with the connection,
/// and writes the waypoints since everybody was there into the file. Gives the exit code. Needs a QCoreApplication.
int runMsfsClient(const ClientArguments &arguments, int pilots);

} // namespace tarvo::bench
