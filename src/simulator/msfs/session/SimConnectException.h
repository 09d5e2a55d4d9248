#pragma once

#include <QtGlobal>

namespace tarvo::simulator::msfs {

/// The SDK's name of an exception, such as "NAME_UNRECOGNIZED"; "UNKNOWN" for the codes that are given none.
const char *exceptionName(quint32 code);

enum class ExceptionAction
{
    Raise,          ///< an error of the session
    Ignore,         ///< a line in the log
    CreateFailed,   ///< some aircraft could not be made; which one is not told
    DisableTraffic, ///< the snapshot's definition is not to the simulator's taste
};

/// `trafficIsUsed`: its definition is made or its timer runs.
ExceptionAction exceptionAction(quint32 code, bool trafficIsEnabled, bool trafficIsUsed);

} // namespace tarvo::simulator::msfs
