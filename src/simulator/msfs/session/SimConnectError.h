#pragma once

#include <QtGlobal>

namespace tarvo::simulator::msfs {

/// What went wrong with SimConnect. The numbers stand in log lines.
enum class SimConnectError : quint32
{
    ConnectionFailed = 0, ///< no library could open a session
    Timeout = 1,          ///< raised by nobody yet
    VersionMismatch = 2,  ///< raised by nobody yet; ends all attempts
    AccessDenied = 3,     ///< raised by nobody yet; ends all attempts
    RuntimeError = 4      ///< a call failed on an open session
};

} // namespace tarvo::simulator::msfs
