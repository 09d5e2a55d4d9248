#include "practice/simconnect/Messages.h"

#include "simulator/msfs/simconnect/SimConnectApi.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace tarvo::practice::message {

namespace {
using namespace simulator::msfs;

/// A whole message of the structure's size, with its head.
template <typename Message>
Message headed(DWORD id)
{
    Message message{};
    message.dwSize = sizeof(Message);
    message.dwVersion = 6; // of the newer simulators
    message.dwID = id;
    return message;
}

template <typename Value>
QByteArray bytes(const Value &value)
{
    return {reinterpret_cast<const char *>(&value), sizeof(value)};
}

/// The structure with data of variable length behind it, all of which the size counts.
template <typename Message>
QByteArray bytes(Message message, const QByteArray &data)
{
    message.dwSize = static_cast<DWORD>(sizeof(Message)) + static_cast<DWORD>(data.size());
    return bytes(message) + data;
}

void copyText(char *to, std::size_t room, const QByteArray &text)
{
    std::memcpy(to, text.constData(), std::min(room, static_cast<std::size_t>(text.size())));
}

QByteArray data(DWORD id, const DataHead &head, const QByteArray &data)
{
    auto message = headed<SIMCONNECT_RECV_SIMOBJECT_DATA>(id);
    message.dwRequestID = head.request;
    message.dwObjectID = head.object;
    message.dwDefineID = head.define;
    message.dwentrynumber = head.entry;
    message.dwoutof = head.outOf;
    message.dwDefineCount = head.count;
    return bytes(message, data);
}
} // namespace

Application msfs2020()
{
    return {.name = "Microsoft Flight Simulator", .version = {1, 38, 2, 0}, .simConnectVersion = {11, 0, 62651, 3}};
}

Application msfs2024()
{
    return {
        .name = "Microsoft Flight Simulator 2024", .version = {12, 2, 282174, 999}, .simConnectVersion = {12, 2, 0, 0}};
}

QByteArray any(quint32 id, const QByteArray &body)
{
    return bytes(headed<SIMCONNECT_RECV>(id), body);
}

QByteArray exception(quint32 exception, quint32 sendId, quint32 index)
{
    auto message = headed<SIMCONNECT_RECV_EXCEPTION>(SIMCONNECT_RECV_ID_EXCEPTION);
    message.dwException = exception;
    message.dwSendID = sendId;
    message.dwIndex = index;
    return bytes(message);
}

QByteArray open(const Application &application)
{
    auto message = headed<SIMCONNECT_RECV_OPEN>(SIMCONNECT_RECV_ID_OPEN);
    copyText(message.szApplicationName, sizeof(message.szApplicationName), application.name);
    message.dwApplicationVersionMajor = application.version[0];
    message.dwApplicationVersionMinor = application.version[1];
    message.dwApplicationBuildMajor = application.version[2];
    message.dwApplicationBuildMinor = application.version[3];
    message.dwSimConnectVersionMajor = application.simConnectVersion[0];
    message.dwSimConnectVersionMinor = application.simConnectVersion[1];
    message.dwSimConnectBuildMajor = application.simConnectVersion[2];
    message.dwSimConnectBuildMinor = application.simConnectVersion[3];
    return bytes(message);
}

QByteArray quit()
{
    return any(SIMCONNECT_RECV_ID_QUIT, {});
}

QByteArray event(quint32 group, quint32 event, quint32 data)
{
    auto message = headed<SIMCONNECT_RECV_EVENT>(SIMCONNECT_RECV_ID_EVENT);
    message.uGroupID = group;
    message.uEventID = event;
    message.dwData = data;
    return bytes(message);
}

QByteArray objectData(const DataHead &head, const QByteArray &data)
{
    return message::data(SIMCONNECT_RECV_ID_SIMOBJECT_DATA, head, data);
}

QByteArray objectDataByType(const DataHead &head, const QByteArray &data)
{
    return message::data(SIMCONNECT_RECV_ID_SIMOBJECT_DATA_BYTYPE, head, data);
}

QByteArray assignedObject(quint32 request, quint32 object)
{
    auto message = headed<SIMCONNECT_RECV_ASSIGNED_OBJECT_ID>(SIMCONNECT_RECV_ID_ASSIGNED_OBJECT_ID);
    message.dwRequestID = request;
    message.dwObjectID = object;
    return bytes(message);
}

QByteArray inputEvents(quint32 request, const QList<InputEvent> &events, int stride, quint32 entry, quint32 outOf)
{
    auto message = headed<SIMCONNECT_RECV_ENUMERATE_INPUT_EVENTS>(SIMCONNECT_RECV_ID_ENUMERATE_INPUT_EVENTS);
    message.dwRequestID = request;
    message.dwArraySize = static_cast<DWORD>(events.size());
    message.dwEntryNumber = entry;
    message.dwOutOf = outOf;
    QByteArray descriptors;
    for (const InputEvent &event : events) {
        SIMCONNECT_INPUT_EVENT_DESCRIPTOR descriptor{};
        copyText(descriptor.Name, sizeof(descriptor.Name), event.name);
        descriptor.Hash = event.hash;
        descriptor.eType = event.type;
        descriptors += text(bytes(descriptor), stride);
    }
    return bytes(message, descriptors);
}

QByteArray inputEventValue(quint64 hash, quint32 type, double value)
{
    auto message = headed<SIMCONNECT_RECV_SUBSCRIBE_INPUT_EVENT>(SIMCONNECT_RECV_ID_SUBSCRIBE_INPUT_EVENT);
    message.Hash = hash;
    message.eType = type;
    message.Value = value;
    return bytes(message);
}

QByteArray int32(qint32 value)
{
    return bytes(value);
}

QByteArray float64(double value)
{
    return bytes(value);
}

QByteArray text(const QByteArray &text, int size)
{
    return text.left(size).leftJustified(size, '\0');
}

} // namespace tarvo::practice::message
