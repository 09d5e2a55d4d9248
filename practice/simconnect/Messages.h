#pragma once

#include <QByteArray>
#include <QList>

/// The simulator's messages, byte for byte as a client gets them.
namespace tarvo::practice::message {

/// What the simulator says of itself when a client connects.
struct Application
{
    QByteArray name; ///< at most 256 bytes are sent
    quint32 version[4] = {};
    quint32 simConnectVersion[4] = {};
};

/// As the two simulators introduce themselves.
Application msfs2020();
Application msfs2024();

/// Who asked for data, what they are of, and which of several messages this is.
struct DataHead
{
    quint32 request = 0;
    quint32 object = 0;
    quint32 define = 0;
    quint32 entry = 0;
    quint32 outOf = 1;
    quint32 count = 0; ///< fields of the definition
};

struct InputEvent
{
    QByteArray name; ///< at most 64 bytes are sent
    quint64 hash = 0;
    quint32 type = 0; ///< SIMCONNECT_INPUT_EVENT_TYPE
};

constexpr int shortestDescriptor = 76; ///< bytes of one input event

/// Any message: its head with the right size, and `body`.
QByteArray any(quint32 id, const QByteArray &body);
QByteArray exception(quint32 exception, quint32 sendId, quint32 index);
QByteArray open(const Application &application);
QByteArray quit();
QByteArray event(quint32 group, quint32 event, quint32 data);
QByteArray objectData(const DataHead &head, const QByteArray &data);
QByteArray objectDataByType(const DataHead &head, const QByteArray &data);
QByteArray assignedObject(quint32 request, quint32 object);
/// `stride`: bytes of one descriptor; a later SDK may have longer ones.
QByteArray inputEvents(quint32 request, const QList<InputEvent> &events, int stride = shortestDescriptor,
                       quint32 entry = 0, quint32 outOf = 1);
QByteArray inputEventValue(quint64 hash, quint32 type, double value);

// Pieces of data, to be put behind each other.
QByteArray int32(qint32 value);
QByteArray float64(double value);
/// `size` bytes: the text, cut to them, and zeros.
QByteArray text(const QByteArray &text, int size);

} // namespace tarvo::practice::message
