#include "simulator/msfs/session/SimConnectException.h"

#include <array>

namespace tarvo::simulator::msfs {

namespace {

/// By code. Gaps, and what is beyond, have no name here.
constexpr std::array<const char *, 45> names{
    nullptr,
    "ERROR",
    "SIZE_MISMATCH",
    "UNRECOGNIZED_ID",
    "UNOPENED",
    "VERSION_MISMATCH",
    "TOO_MANY_GROUPS",
    "NAME_UNRECOGNIZED",
    "TOO_MANY_EVENT_NAMES",
    "EVENT_ID_DUPLICATE",
    "TOO_MANY_MAPS",
    "TOO_MANY_OBJECTS",
    "TOO_MANY_REQUESTS",
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    "INVALID_DATA_TYPE",
    "INVALID_DATA_SIZE",
    "DATA_ERROR",
    "INVALID_ARRAY",
    "CREATE_OBJECT_FAILED",
    nullptr,
    "OPERATION_INVALID_FOR_OBJECT_TYPE",
    "ILLEGAL_OPERATION",
    nullptr,
    "INVALID_ENUM",
    "DEFINITION_ERROR",
    "DUPLICATE_ID",
    "DATUM_ID",
    "OUT_OF_BOUNDS",
    "ALREADY_CREATED",
    "OBJECT_OUTSIDE_REALITY_BUBBLE",
    "OBJECT_CONTAINER",
    "OBJECT_AI",
    "OBJECT_ATC",
    "OBJECT_SCHEDULE",
    "JETWAY_DATA",
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    "INTERNAL",
};

enum Code : quint32
{
    UnrecognizedId = 3,
    NameUnrecognized = 7,
    DataError = 20,
    CreateObjectFailed = 22,
    DefinitionError = 28,
    DatumId = 30,
};

} // namespace

const char *exceptionName(quint32 code)
{
    return code < names.size() && names[code] ? names[code] : "UNKNOWN";
}

ExceptionAction exceptionAction(quint32 code, bool trafficIsEnabled, bool trafficIsUsed)
{
    switch (code) {
    case UnrecognizedId:
    case DataError:
        return ExceptionAction::Ignore;
    case NameUnrecognized:
        return trafficIsEnabled && trafficIsUsed ? ExceptionAction::DisableTraffic : ExceptionAction::Ignore;
    case CreateObjectFailed:
        return ExceptionAction::CreateFailed;
    case DefinitionError:
    case DatumId:
        return trafficIsEnabled ? ExceptionAction::DisableTraffic : ExceptionAction::Raise;
    default:
        return ExceptionAction::Raise;
    }
}

} // namespace tarvo::simulator::msfs
