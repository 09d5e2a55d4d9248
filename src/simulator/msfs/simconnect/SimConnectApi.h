#pragma once

#include <cstdint>

/// SimConnect as its binary interface is: the packed structures, the numbers, and the types of the entry points. x86-64
/// only, where all calling conventions are one. The layouts are public; nothing here comes from Microsoft's header.
///
/// Names are the SDK's. Only the session, its messages and stand-ins of the simulator include this.
namespace tarvo::simulator::msfs {

using HANDLE = void *;
using HRESULT = std::int32_t; ///< below zero: failed
using DWORD = std::uint32_t;

constexpr HRESULT simConnectOk = 0;
constexpr HRESULT simConnectFailed = static_cast<HRESULT>(0x80004005); ///< E_FAIL

constexpr DWORD SIMCONNECT_UNUSED = 0xFFFFFFFF;
constexpr DWORD SIMCONNECT_OPEN_CONFIGINDEX_LOCAL = 0xFFFFFFFF;
constexpr DWORD SIMCONNECT_OBJECT_ID_USER = 0;
constexpr DWORD SIMCONNECT_GROUP_PRIORITY_HIGHEST = 1;
constexpr DWORD SIMCONNECT_EVENT_FLAG_GROUPID_IS_PRIORITY = 0x10;
constexpr DWORD SIMCONNECT_DATA_REQUEST_FLAG_CHANGED = 1;
constexpr DWORD SIMCONNECT_WAYPOINT_ON_GROUND = 2;
constexpr DWORD SIMCONNECT_WAYPOINT_SPEED_REQUESTED = 4;

enum SIMCONNECT_RECV_ID : DWORD
{
    SIMCONNECT_RECV_ID_EXCEPTION = 1,
    SIMCONNECT_RECV_ID_OPEN = 2,
    SIMCONNECT_RECV_ID_QUIT = 3,
    SIMCONNECT_RECV_ID_EVENT = 4,
    SIMCONNECT_RECV_ID_SIMOBJECT_DATA = 8,
    SIMCONNECT_RECV_ID_SIMOBJECT_DATA_BYTYPE = 9,
    SIMCONNECT_RECV_ID_ASSIGNED_OBJECT_ID = 12,
    SIMCONNECT_RECV_ID_ENUMERATE_INPUT_EVENTS = 34,
    SIMCONNECT_RECV_ID_GET_INPUT_EVENT = 35,
    SIMCONNECT_RECV_ID_SUBSCRIBE_INPUT_EVENT = 36,
};

enum SIMCONNECT_DATATYPE : DWORD
{
    SIMCONNECT_DATATYPE_INT32 = 1,
    SIMCONNECT_DATATYPE_FLOAT64 = 4,
    SIMCONNECT_DATATYPE_STRING64 = 7,
    SIMCONNECT_DATATYPE_STRING256 = 9,
    SIMCONNECT_DATATYPE_WAYPOINT = 14,
};

enum SIMCONNECT_PERIOD : DWORD
{
    SIMCONNECT_PERIOD_NEVER = 0,
    SIMCONNECT_PERIOD_ONCE = 1,
    SIMCONNECT_PERIOD_SIM_FRAME = 3,
};

enum SIMCONNECT_SIMOBJECT_TYPE : DWORD
{
    SIMCONNECT_SIMOBJECT_TYPE_AIRCRAFT = 2,
};

/// The public pages list a NONE before these two; programs that run use 0 and 1. To be confirmed on a real simulator.
enum SIMCONNECT_INPUT_EVENT_TYPE : DWORD
{
    SIMCONNECT_INPUT_EVENT_TYPE_DOUBLE = 0,
    SIMCONNECT_INPUT_EVENT_TYPE_STRING = 1,
};

#pragma pack(push, 1)

/// The head of every message; `dwSize` counts all of it.
struct SIMCONNECT_RECV
{
    DWORD dwSize;
    DWORD dwVersion;
    DWORD dwID;
};
static_assert(sizeof(SIMCONNECT_RECV) == 12);

struct SIMCONNECT_RECV_EXCEPTION : SIMCONNECT_RECV
{
    DWORD dwException;
    DWORD dwSendID;
    DWORD dwIndex;
};
static_assert(sizeof(SIMCONNECT_RECV_EXCEPTION) == 24);

struct SIMCONNECT_RECV_OPEN : SIMCONNECT_RECV
{
    char szApplicationName[256];
    DWORD dwApplicationVersionMajor;
    DWORD dwApplicationVersionMinor;
    DWORD dwApplicationBuildMajor;
    DWORD dwApplicationBuildMinor;
    DWORD dwSimConnectVersionMajor;
    DWORD dwSimConnectVersionMinor;
    DWORD dwSimConnectBuildMajor;
    DWORD dwSimConnectBuildMinor;
    DWORD dwReserved1;
    DWORD dwReserved2;
};
static_assert(sizeof(SIMCONNECT_RECV_OPEN) == 308);

struct SIMCONNECT_RECV_EVENT : SIMCONNECT_RECV
{
    DWORD uGroupID;
    DWORD uEventID;
    DWORD dwData;
};
static_assert(sizeof(SIMCONNECT_RECV_EVENT) == 24);

/// Also the head of a message by type; the data follow.
struct SIMCONNECT_RECV_SIMOBJECT_DATA : SIMCONNECT_RECV
{
    DWORD dwRequestID;
    DWORD dwObjectID;
    DWORD dwDefineID;
    DWORD dwFlags;
    DWORD dwentrynumber; ///< of a reply in several messages
    DWORD dwoutof;       ///< how many messages the reply has
    DWORD dwDefineCount;
};
static_assert(sizeof(SIMCONNECT_RECV_SIMOBJECT_DATA) == 40);

struct SIMCONNECT_RECV_ASSIGNED_OBJECT_ID : SIMCONNECT_RECV
{
    DWORD dwRequestID;
    DWORD dwObjectID;
};
static_assert(sizeof(SIMCONNECT_RECV_ASSIGNED_OBJECT_ID) == 20);

/// The descriptors follow, each (dwSize - 28) / dwArraySize bytes long and at least 76: a later SDK may lengthen them.
struct SIMCONNECT_RECV_ENUMERATE_INPUT_EVENTS : SIMCONNECT_RECV
{
    DWORD dwRequestID;
    DWORD dwArraySize;
    DWORD dwEntryNumber;
    DWORD dwOutOf;
};
static_assert(sizeof(SIMCONNECT_RECV_ENUMERATE_INPUT_EVENTS) == 28);

struct SIMCONNECT_INPUT_EVENT_DESCRIPTOR
{
    char Name[64];
    std::uint64_t Hash;
    DWORD eType; ///< SIMCONNECT_INPUT_EVENT_TYPE
};
static_assert(sizeof(SIMCONNECT_INPUT_EVENT_DESCRIPTOR) == 76);

struct SIMCONNECT_RECV_SUBSCRIBE_INPUT_EVENT : SIMCONNECT_RECV
{
    std::uint64_t Hash;
    DWORD eType; ///< SIMCONNECT_INPUT_EVENT_TYPE
    double Value;
};
static_assert(sizeof(SIMCONNECT_RECV_SUBSCRIBE_INPUT_EVENT) == 32);

struct SIMCONNECT_DATA_WAYPOINT
{
    double Latitude;  ///< degrees
    double Longitude; ///< degrees
    double Altitude;  ///< feet
    DWORD Flags;
    double ktsSpeed;
    double percentThrottle;
};
static_assert(sizeof(SIMCONNECT_DATA_WAYPOINT) == 44);

struct SIMCONNECT_DATA_INITPOSITION
{
    double Latitude;  ///< degrees
    double Longitude; ///< degrees
    double Altitude;  ///< feet
    double Pitch;     ///< degrees
    double Bank;      ///< degrees
    double Heading;   ///< degrees true
    DWORD OnGround;   ///< 0 or 1
    DWORD Airspeed;   ///< knots
};
static_assert(sizeof(SIMCONNECT_DATA_INITPOSITION) == 56);

#pragma pack(pop)

/// The sixteen entry points that the client uses, each null until bound. The last three are in newer libraries only.
struct SimConnectFunctions
{
    HRESULT (*Open)(HANDLE *, const char *name, void *window, DWORD userEvent, HANDLE event, DWORD configIndex);
    HRESULT (*Close)(HANDLE);
    HRESULT(*AddToDataDefinition)
    (HANDLE, DWORD define, const char *datum, const char *unit, DWORD datatype, float epsilon, DWORD datumId);
    HRESULT (*ClearDataDefinition)(HANDLE, DWORD define);
    HRESULT(*RequestDataOnSimObject)
    (HANDLE, DWORD request, DWORD define, DWORD object, DWORD period, DWORD flags, DWORD origin, DWORD interval,
     DWORD limit);
    HRESULT (*RequestDataOnSimObjectType)(HANDLE, DWORD request, DWORD define, DWORD radiusMetres, DWORD type);
    HRESULT(*SetDataOnSimObject)
    (HANDLE, DWORD define, DWORD object, DWORD flags, DWORD arrayCount, DWORD unitSize, void *data);
    HRESULT (*GetNextDispatch)(HANDLE, SIMCONNECT_RECV **message, DWORD *size);
    HRESULT (*MapClientEventToSimEvent)(HANDLE, DWORD event, const char *name);
    HRESULT (*TransmitClientEvent)(HANDLE, DWORD object, DWORD event, DWORD data, DWORD group, DWORD flags);
    HRESULT (*SubscribeToSystemEvent)(HANDLE, DWORD event, const char *name);
    HRESULT(*AICreateNonATCAircraft)
    (HANDLE, const char *title, const char *tailNumber, SIMCONNECT_DATA_INITPOSITION, DWORD request);
    HRESULT (*AIRemoveObject)(HANDLE, DWORD object, DWORD request);
    HRESULT(*AICreateNonATCAircraft_EX1)
    (HANDLE, const char *title, const char *livery, const char *tailNumber, SIMCONNECT_DATA_INITPOSITION,
     DWORD request);
    HRESULT (*EnumerateInputEvents)(HANDLE, DWORD request);
    HRESULT (*SubscribeInputEvent)(HANDLE, std::uint64_t hash);
};

} // namespace tarvo::simulator::msfs
