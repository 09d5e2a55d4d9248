#include "practice/simconnect/EntryPoints.h"

#include "practice/simconnect/CallLine.h"
#include "practice/simconnect/SimConnectStandIn.h"

#include <cstring>

using namespace tarvo::simulator::msfs;
using tarvo::practice::callLine;
using tarvo::practice::SimConnectCalls;
using tarvo::practice::SimConnectStandIn;
using tarvo::practice::WrittenBytes;

namespace {
constexpr HRESULT badArgument = static_cast<HRESULT>(0x80070057); // E_INVALIDARG
constexpr HRESULT badHandle = static_cast<HRESULT>(0x80070006);   // E_HANDLE
constexpr DWORD mostWritten = 65'536;                             ///< bytes of one write

/// Writes the call down and, unless it is to fail, does it.
template <typename Effect, typename... Arguments>
HRESULT carryOut(HANDLE handle, const char *function, const Effect &effect, const Arguments &...arguments)
{
    SimConnectStandIn *standIn = SimConnectStandIn::behind(handle);
    if (!standIn)
        return badHandle;
    const QString line = standIn->logs() ? callLine(function, arguments...) : QString();
    if (const HRESULT result = standIn->enter(function, line); result < 0)
        return result;
    effect(standIn->simulator());
    return simConnectOk;
}

QByteArray textOf(const char *text)
{
    return {text}; // none of a null pointer
}
} // namespace

extern "C" {

HRESULT SimConnect_Open(HANDLE *handle, const char *name, void *window, DWORD userEvent, HANDLE event,
                        DWORD configIndex)
{
    SimConnectStandIn *standIn = SimConnectStandIn::current();
    if (!handle)
        return badArgument;
    *handle = nullptr;
    if (!standIn)
        return simConnectFailed;
    const void *windowPointer = window;
    const void *eventPointer = event;
    return standIn->open(handle, callLine("Open", name, windowPointer, userEvent, eventPointer, configIndex));
}

HRESULT SimConnect_Close(HANDLE handle)
{
    const HRESULT result = carryOut(handle, "Close", [](SimConnectCalls &) {});
    if (result >= 0)
        SimConnectStandIn::behind(handle)->close();
    return result;
}

HRESULT SimConnect_AddToDataDefinition(HANDLE handle, DWORD define, const char *datum, const char *unit, DWORD datatype,
                                       float epsilon, DWORD datumId)
{
    const auto effect = [&](SimConnectCalls &simulator) {
        simulator.addToDataDefinition(define, textOf(datum), textOf(unit), datatype);
    };
    return carryOut(handle, "AddToDataDefinition", effect, define, datum, unit, datatype, epsilon, datumId);
}

HRESULT SimConnect_ClearDataDefinition(HANDLE handle, DWORD define)
{
    const auto effect = [&](SimConnectCalls &simulator) { simulator.clearDataDefinition(define); };
    return carryOut(handle, "ClearDataDefinition", effect, define);
}

HRESULT SimConnect_RequestDataOnSimObject(HANDLE handle, DWORD request, DWORD define, DWORD object, DWORD period,
                                          DWORD flags, DWORD origin, DWORD interval, DWORD limit)
{
    const auto effect = [&](SimConnectCalls &simulator) {
        simulator.requestDataOnSimObject(request, define, object, period, flags);
    };
    return carryOut(handle, "RequestDataOnSimObject", effect, request, define, object, period, flags, origin, interval,
                    limit);
}

HRESULT SimConnect_RequestDataOnSimObjectType(HANDLE handle, DWORD request, DWORD define, DWORD radiusMetres,
                                              DWORD type)
{
    const auto effect = [&](SimConnectCalls &simulator) {
        simulator.requestDataOnSimObjectType(request, define, radiusMetres, type);
    };
    return carryOut(handle, "RequestDataOnSimObjectType", effect, request, define, radiusMetres, type);
}

HRESULT SimConnect_SetDataOnSimObject(HANDLE handle, DWORD define, DWORD object, DWORD flags, DWORD arrayCount,
                                      DWORD unitSize, void *data)
{
    if (!data || unitSize > mostWritten)
        return badArgument;
    const auto effect = [&](SimConnectCalls &simulator) {
        simulator.setDataOnSimObject(define, object, {static_cast<const char *>(data), static_cast<int>(unitSize)});
    };
    return carryOut(handle, "SetDataOnSimObject", effect, define, object, flags, arrayCount, unitSize,
                    WrittenBytes{data, static_cast<qsizetype>(unitSize)});
}

HRESULT SimConnect_GetNextDispatch(HANDLE handle, SIMCONNECT_RECV **message, DWORD *size)
{
    SimConnectStandIn *standIn = SimConnectStandIn::behind(handle);
    if (!message || !size)
        return badArgument;
    return standIn ? standIn->nextDispatch(message, size) : badHandle;
}

HRESULT SimConnect_MapClientEventToSimEvent(HANDLE handle, DWORD event, const char *name)
{
    const auto effect = [&](SimConnectCalls &simulator) { simulator.mapClientEventToSimEvent(event, textOf(name)); };
    return carryOut(handle, "MapClientEventToSimEvent", effect, event, name);
}

HRESULT SimConnect_TransmitClientEvent(HANDLE handle, DWORD object, DWORD event, DWORD data, DWORD group, DWORD flags)
{
    const auto effect = [&](SimConnectCalls &simulator) { simulator.transmitClientEvent(object, event, data); };
    return carryOut(handle, "TransmitClientEvent", effect, object, event, data, group, flags);
}

HRESULT SimConnect_SubscribeToSystemEvent(HANDLE handle, DWORD event, const char *name)
{
    const auto effect = [&](SimConnectCalls &simulator) { simulator.subscribeToSystemEvent(event, textOf(name)); };
    return carryOut(handle, "SubscribeToSystemEvent", effect, event, name);
}

HRESULT SimConnect_AICreateNonATCAircraft(HANDLE handle, const char *title, const char *tailNumber,
                                          SIMCONNECT_DATA_INITPOSITION position, DWORD request)
{
    const auto effect = [&](SimConnectCalls &simulator) {
        simulator.createNonATCAircraft(textOf(title), {}, textOf(tailNumber), position, request);
    };
    return carryOut(handle, "AICreateNonATCAircraft", effect, title, tailNumber, position, request);
}

HRESULT SimConnect_AIRemoveObject(HANDLE handle, DWORD object, DWORD request)
{
    const auto effect = [&](SimConnectCalls &simulator) { simulator.removeObject(object, request); };
    return carryOut(handle, "AIRemoveObject", effect, object, request);
}

HRESULT SimConnect_AICreateNonATCAircraft_EX1(HANDLE handle, const char *title, const char *livery,
                                              const char *tailNumber, SIMCONNECT_DATA_INITPOSITION position,
                                              DWORD request)
{
    const auto effect = [&](SimConnectCalls &simulator) {
        simulator.createNonATCAircraft(textOf(title), textOf(livery), textOf(tailNumber), position, request);
    };
    return carryOut(handle, "AICreateNonATCAircraft_EX1", effect, title, livery, tailNumber, position, request);
}

HRESULT SimConnect_EnumerateInputEvents(HANDLE handle, DWORD request)
{
    const auto effect = [&](SimConnectCalls &simulator) { simulator.enumerateInputEvents(request); };
    return carryOut(handle, "EnumerateInputEvents", effect, request);
}

HRESULT SimConnect_SubscribeInputEvent(HANDLE handle, std::uint64_t hash)
{
    const auto effect = [&](SimConnectCalls &simulator) { simulator.subscribeInputEvent(hash); };
    return carryOut(handle, "SubscribeInputEvent", effect, hash);
}

} // extern "C"

namespace tarvo::practice {

namespace {
struct Named
{
    const char *name;
    void *entry;
};

#define NAMED(NAME)                                                                                                    \
    Named                                                                                                              \
    {                                                                                                                  \
        "SimConnect_" #NAME, reinterpret_cast<void *>(SimConnect_##NAME)                                               \
    }
const Named entries[] = {
    NAMED(Open),
    NAMED(Close),
    NAMED(AddToDataDefinition),
    NAMED(ClearDataDefinition),
    NAMED(RequestDataOnSimObject),
    NAMED(RequestDataOnSimObjectType),
    NAMED(SetDataOnSimObject),
    NAMED(GetNextDispatch),
    NAMED(MapClientEventToSimEvent),
    NAMED(TransmitClientEvent),
    NAMED(SubscribeToSystemEvent),
    NAMED(AICreateNonATCAircraft),
    NAMED(AIRemoveObject),
    NAMED(AICreateNonATCAircraft_EX1),
    NAMED(EnumerateInputEvents),
    NAMED(SubscribeInputEvent),
};
#undef NAMED
} // namespace

SimConnectFunctions entryPoints()
{
    return {SimConnect_Open,
            SimConnect_Close,
            SimConnect_AddToDataDefinition,
            SimConnect_ClearDataDefinition,
            SimConnect_RequestDataOnSimObject,
            SimConnect_RequestDataOnSimObjectType,
            SimConnect_SetDataOnSimObject,
            SimConnect_GetNextDispatch,
            SimConnect_MapClientEventToSimEvent,
            SimConnect_TransmitClientEvent,
            SimConnect_SubscribeToSystemEvent,
            SimConnect_AICreateNonATCAircraft,
            SimConnect_AIRemoveObject,
            SimConnect_AICreateNonATCAircraft_EX1,
            SimConnect_EnumerateInputEvents,
            SimConnect_SubscribeInputEvent};
}

void *entryPoint(const char *name)
{
    for (const Named &named : entries) {
        if (std::strcmp(named.name, name) == 0)
            return named.entry;
    }
    return nullptr;
}

} // namespace tarvo::practice
