#pragma once

#include <QByteArrayView>
#include <QList>
#include <QString>

#include <optional>
#include <variant>

namespace tarvo::simulator::msfs {

/// What the simulator's messages say. A QByteArrayView in them is good until the next message is taken.

struct ExceptionMessage
{
    quint32 code;
    quint32 sendId; ///< which call is meant
    quint32 index;  ///< which of its arguments
};

struct OpenMessage
{
    QString applicationName;
    QString applicationVersion; ///< "11.0.62651.3"
    quint32 applicationMajor;
    QString simConnectVersion; ///< likewise
};

struct QuitMessage
{
};

struct EventMessage
{
    quint32 event; ///< the client's id
    quint32 data;
};

/// Data of one object.
struct ObjectDataMessage
{
    quint32 request;
    quint32 object;
    QByteArrayView data; ///< what stands behind the head
};

/// One message of a reply that has one for each object of a type.
struct TypedObjectMessage
{
    quint32 request;
    quint32 object;
    quint32 entry; ///< from 0
    quint32 outOf;
    QByteArrayView data; ///< what stands behind the head
};

struct AssignedObjectMessage
{
    quint32 request;
    quint32 object;
};

struct InputEventDescriptor
{
    QString name;
    quint64 hash;
    quint32 type; ///< SIMCONNECT_INPUT_EVENT_TYPE
};

struct InputEventsMessage
{
    quint32 request;
    QList<InputEventDescriptor> events;
};

struct InputEventValueMessage
{
    quint64 hash;
    quint32 type; ///< SIMCONNECT_INPUT_EVENT_TYPE
    double value; ///< of a double's event
};

/// Of a kind that the client has no use for.
struct OtherMessage
{
};

using DispatchMessage =
    std::variant<OtherMessage, ExceptionMessage, OpenMessage, QuitMessage, EventMessage, ObjectDataMessage,
                 TypedObjectMessage, AssignedObjectMessage, InputEventsMessage, InputEventValueMessage>;

/// Nothing for bytes that are no whole message: shorter than their kind, or than they say.
std::optional<DispatchMessage> parseMessage(QByteArrayView bytes);

} // namespace tarvo::simulator::msfs
