#include "msfs/TimedLibrary.h"

#include "simulator/msfs/simconnect/SimConnectApi.h"
#include "traffic/Ledger.h"

#include <cstring>
#include <utility>

namespace tarvo::bench {

using namespace simulator::msfs;

namespace {

constexpr DWORD waypointDefinition = 30000;

using SetData = decltype(SimConnectFunctions::SetDataOnSimObject);
SetData setDataBehind = nullptr; // a C function has no place for them
TimedLibrary::Receiver waypointReceiver;

HRESULT timedSetData(HANDLE handle, DWORD define, DWORD object, DWORD flags, DWORD count, DWORD size, void *data)
{
    if (define == waypointDefinition && size == sizeof(SIMCONNECT_DATA_WAYPOINT)) {
        SIMCONNECT_DATA_WAYPOINT waypoint;
        std::memcpy(&waypoint, data, sizeof(waypoint));
        waypointReceiver(object, waypoint.Latitude, steadyNs());
    }
    return setDataBehind(handle, define, object, flags, count, size, data);
}

} // namespace

TimedLibrary::TimedLibrary(std::unique_ptr<SimConnectLibrary> library, Receiver receiver)
    : m_library(std::move(library))
{
    waypointReceiver = std::move(receiver);
}

TimedLibrary::~TimedLibrary()
{
    waypointReceiver = {};
}

void *TimedLibrary::entryPoint(const char *name)
{
    void *found = m_library->entryPoint(name);
    if (!found || std::strcmp(name, "SimConnect_SetDataOnSimObject") != 0)
        return found;
    setDataBehind = reinterpret_cast<SetData>(found);
    return reinterpret_cast<void *>(&timedSetData);
}

} // namespace tarvo::bench
