#include "simulator/msfs/session/DispatchMessage.h"

#include "simulator/msfs/simconnect/SimConnectApi.h"
#include "simulator/msfs/simvar/SimVarWire.h"

#include <cstring>

namespace tarvo::simulator::msfs {

namespace {

/// Copies out what may lie at any address; the bytes suffice.
template <class Structure>
Structure at(QByteArrayView bytes)
{
    Structure structure;
    std::memcpy(&structure, bytes.data(), sizeof structure);
    return structure;
}

QString version(DWORD major, DWORD minor, DWORD buildMajor, DWORD buildMinor)
{
    return QStringLiteral("%1.%2.%3.%4").arg(major).arg(minor).arg(buildMajor).arg(buildMinor);
}

// One value for each kind; the bytes suffice for the structure and are as many as the message says.

DispatchMessage exceptionOf(QByteArrayView bytes)
{
    const auto message = at<SIMCONNECT_RECV_EXCEPTION>(bytes);
    return ExceptionMessage{message.dwException, message.dwSendID, message.dwIndex};
}

DispatchMessage openOf(QByteArrayView bytes)
{
    const auto message = at<SIMCONNECT_RECV_OPEN>(bytes);
    const auto length = static_cast<qsizetype>(qstrnlen(message.szApplicationName, sizeof message.szApplicationName));
    return OpenMessage{.applicationName = QString::fromLatin1(message.szApplicationName, length).trimmed(),
                       .applicationVersion =
                           version(message.dwApplicationVersionMajor, message.dwApplicationVersionMinor,
                                   message.dwApplicationBuildMajor, message.dwApplicationBuildMinor),
                       .applicationMajor = message.dwApplicationVersionMajor,
                       .simConnectVersion = version(message.dwSimConnectVersionMajor, message.dwSimConnectVersionMinor,
                                                    message.dwSimConnectBuildMajor, message.dwSimConnectBuildMinor)};
}

DispatchMessage eventOf(QByteArrayView bytes)
{
    const auto message = at<SIMCONNECT_RECV_EVENT>(bytes);
    return EventMessage{message.uEventID, message.dwData};
}

DispatchMessage objectDataOf(QByteArrayView bytes)
{
    const auto message = at<SIMCONNECT_RECV_SIMOBJECT_DATA>(bytes);
    return ObjectDataMessage{message.dwRequestID, message.dwObjectID, bytes.sliced(sizeof message)};
}

DispatchMessage typedObjectOf(QByteArrayView bytes)
{
    const auto message = at<SIMCONNECT_RECV_SIMOBJECT_DATA>(bytes);
    return TypedObjectMessage{message.dwRequestID, message.dwObjectID, message.dwentrynumber, message.dwoutof,
                              bytes.sliced(sizeof message)};
}

DispatchMessage assignedObjectOf(QByteArrayView bytes)
{
    const auto message = at<SIMCONNECT_RECV_ASSIGNED_OBJECT_ID>(bytes);
    return AssignedObjectMessage{message.dwRequestID, message.dwObjectID};
}

DispatchMessage inputEventValueOf(QByteArrayView bytes)
{
    const auto message = at<SIMCONNECT_RECV_SUBSCRIBE_INPUT_EVENT>(bytes);
    return InputEventValueMessage{message.Hash, message.eType, message.Value};
}

InputEventDescriptor descriptorOf(QByteArrayView bytes)
{
    const auto descriptor = at<SIMCONNECT_INPUT_EVENT_DESCRIPTOR>(bytes);
    const QByteArrayView name(descriptor.Name, sizeof descriptor.Name);
    return {wireText(name), descriptor.Hash, descriptor.eType};
}

/// Nothing when there is no room for as many descriptors as it says. A later simulator's may be longer.
std::optional<DispatchMessage> inputEventsOf(QByteArrayView bytes)
{
    const auto message = at<SIMCONNECT_RECV_ENUMERATE_INPUT_EVENTS>(bytes);
    InputEventsMessage result{message.dwRequestID, {}};
    if (message.dwArraySize == 0)
        return result;
    const QByteArrayView descriptors = bytes.sliced(sizeof message);
    const auto count = static_cast<qsizetype>(message.dwArraySize);
    const qsizetype stride = descriptors.size() / count;
    if (stride < qsizetype(sizeof(SIMCONNECT_INPUT_EVENT_DESCRIPTOR)))
        return std::nullopt;
    for (qsizetype i = 0; i < count; ++i)
        result.events.append(descriptorOf(descriptors.sliced(i * stride)));
    return result;
}

/// `read` of bytes that suffice for a Structure.
template <class Structure, auto read>
std::optional<DispatchMessage> checked(QByteArrayView bytes)
{
    if (bytes.size() < qsizetype(sizeof(Structure)))
        return std::nullopt;
    return read(bytes);
}

} // namespace

std::optional<DispatchMessage> parseMessage(QByteArrayView bytes)
{
    if (bytes.size() < qsizetype(sizeof(SIMCONNECT_RECV)))
        return std::nullopt;
    const auto head = at<SIMCONNECT_RECV>(bytes);
    if (head.dwSize > bytes.size() || head.dwSize < sizeof head)
        return std::nullopt;
    bytes = bytes.first(head.dwSize);
    switch (head.dwID) {
    case SIMCONNECT_RECV_ID_EXCEPTION:
        return checked<SIMCONNECT_RECV_EXCEPTION, exceptionOf>(bytes);
    case SIMCONNECT_RECV_ID_OPEN:
        return checked<SIMCONNECT_RECV_OPEN, openOf>(bytes);
    case SIMCONNECT_RECV_ID_QUIT:
        return QuitMessage{};
    case SIMCONNECT_RECV_ID_EVENT:
        return checked<SIMCONNECT_RECV_EVENT, eventOf>(bytes);
    case SIMCONNECT_RECV_ID_SIMOBJECT_DATA:
        return checked<SIMCONNECT_RECV_SIMOBJECT_DATA, objectDataOf>(bytes);
    case SIMCONNECT_RECV_ID_SIMOBJECT_DATA_BYTYPE:
        return checked<SIMCONNECT_RECV_SIMOBJECT_DATA, typedObjectOf>(bytes);
    case SIMCONNECT_RECV_ID_ASSIGNED_OBJECT_ID:
        return checked<SIMCONNECT_RECV_ASSIGNED_OBJECT_ID, assignedObjectOf>(bytes);
    case SIMCONNECT_RECV_ID_ENUMERATE_INPUT_EVENTS:
        return checked<SIMCONNECT_RECV_ENUMERATE_INPUT_EVENTS, inputEventsOf>(bytes);
    case SIMCONNECT_RECV_ID_SUBSCRIBE_INPUT_EVENT:
        return checked<SIMCONNECT_RECV_SUBSCRIBE_INPUT_EVENT, inputEventValueOf>(bytes);
    default:
        return OtherMessage{};
    }
}

} // namespace tarvo::simulator::msfs
