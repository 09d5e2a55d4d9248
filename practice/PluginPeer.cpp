#include "practice/PluginPeer.h"

#include <QDeadlineTimer>
#include <QStringList>

#include <msgpack.hpp>
#include <nng/nng.h>
#include <nng/protocol/pair1/pair.h>
#include <nng/supplemental/util/platform.h>

namespace tarvo::practice {

namespace {
constexpr std::size_t largestMessage = 1 << 20;
constexpr std::size_t mostElements = 4096;
constexpr std::size_t deepest = 8;
constexpr int buffered = 1024; // messages; a client that subscribes to nothing reads them late
constexpr nng_duration quietMs = 20;
constexpr qint64 longestDrainMs = 200;

using Packer = msgpack::packer<msgpack::sbuffer>;

void pack(Packer &packer, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        packer.pack(value.toBool());
        break;
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
        packer.pack(value.toLongLong());
        break;
    case QMetaType::Float:
    case QMetaType::Double:
        packer.pack(value.toDouble());
        break;
    case QMetaType::QString:
        packer.pack(value.toString().toStdString());
        break;
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        packer.pack_array(static_cast<uint32_t>(list.size()));
        for (const QVariant &item : list)
            pack(packer, item);
        break;
    }
    default:
        packer.pack_nil();
    }
}

QVariant unpack(const msgpack::object &object)
{
    switch (object.type) {
    case msgpack::type::BOOLEAN:
        return object.via.boolean;
    case msgpack::type::POSITIVE_INTEGER:
    case msgpack::type::NEGATIVE_INTEGER:
        return QVariant::fromValue(static_cast<qint64>(object.via.i64));
    case msgpack::type::FLOAT32:
        return static_cast<float>(object.via.f64);
    case msgpack::type::FLOAT64:
        return object.via.f64;
    case msgpack::type::STR:
        return QString::fromUtf8(object.via.str.ptr, static_cast<qsizetype>(object.via.str.size));
    case msgpack::type::ARRAY: {
        QVariantList list;
        for (uint32_t i = 0; i < object.via.array.size; ++i)
            list.append(unpack(object.via.array.ptr[i]));
        return list;
    }
    default:
        return {};
    }
}
} // namespace

struct PluginPeer::Socket
{
    nng_socket handle = NNG_SOCKET_INITIALIZER;

    Socket() = default;
    Socket(const Socket &) = delete;
    Socket &operator=(const Socket &) = delete;
    ~Socket()
    {
        awaitQuiet();
        nng_close(handle);
    }

    /// nng 1.5 has a flaw: when a pipe is closed at this end just as a message comes in, the close may wait for ever.
    /// So the socket is read empty until nothing has come for a moment. A peer that never stops is read no more
    /// instead: once the receive buffer is full, nothing comes in, either.
    void awaitQuiet() const
    {
        nng_socket_set_ms(handle, NNG_OPT_RECVTIMEO, quietMs);
        const QDeadlineTimer deadline(longestDrainMs);
        nng_msg *message = nullptr;
        while (nng_recvmsg(handle, &message, 0) == 0) {
            nng_msg_free(message);
            if (deadline.hasExpired()) {
                nng_msleep(quietMs);
                return;
            }
        }
    }

    /// The next message; null when there is none.
    QByteArray receive() const
    {
        void *data = nullptr;
        std::size_t size = 0;
        if (nng_recv(handle, &data, &size, NNG_FLAG_ALLOC | NNG_FLAG_NONBLOCK) != 0)
            return {};
        QByteArray bytes(static_cast<const char *>(data), static_cast<qsizetype>(size));
        nng_free(data, size);
        return bytes.isNull() ? QByteArray("") : bytes;
    }

    /// Opens and listens; an nng error number or 0.
    int open(const QByteArray &url, int *readable)
    {
        if (const int error = nng_pair1_open(&handle))
            return error;
        nng_socket_set_size(handle, NNG_OPT_RECVMAXSZ, largestMessage);
        nng_socket_set_int(handle, NNG_OPT_SENDBUF, buffered);
        nng_socket_set_int(handle, NNG_OPT_RECVBUF, buffered);
        if (const int error = nng_listen(handle, url.constData(), nullptr, 0))
            return error;
        return nng_socket_get_int(handle, NNG_OPT_RECVFD, readable);
    }
};

PluginPeer::PluginPeer(QObject *parent) : QObject(parent) {}

PluginPeer::~PluginPeer()
{
    close();
}

bool PluginPeer::listen(const QString &url)
{
    close();
    auto socket = std::make_unique<Socket>();
    int readable = -1;
    if (const int error = socket->open(url.toUtf8(), &readable)) {
        m_error = QStringLiteral("plugin socket %1: %2").arg(url, QString::fromUtf8(nng_strerror(error)));
        return false;
    }
    m_url = url;
    m_socket = std::move(socket);
    m_notifier = std::make_unique<QSocketNotifier>(readable, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &PluginPeer::receiveAll);
    return true;
}

void PluginPeer::close()
{
    m_notifier.reset(); // before the descriptor that it watches goes away
    m_socket.reset();
}

QString PluginPeer::url() const
{
    return m_url;
}

QString PluginPeer::errorString() const
{
    return m_error;
}

void PluginPeer::setVersion(qint64 version)
{
    m_version = version;
}

void PluginPeer::setCslValid(bool valid)
{
    m_cslValid = valid;
}

void PluginPeer::setMute(bool mute)
{
    m_mute = mute;
}

void PluginPeer::receiveAll()
{
    while (m_socket) {
        const QByteArray bytes = m_socket->receive();
        if (bytes.isNull())
            return;
        receive(bytes);
    }
}

void PluginPeer::receive(const QByteArray &bytes)
{
    QString name;
    QVariantList arguments;
    try {
        const msgpack::unpack_limit limit(mostElements, mostElements, largestMessage, largestMessage, largestMessage,
                                          deepest);
        const msgpack::object_handle handle =
            msgpack::unpack(bytes.constData(), static_cast<std::size_t>(bytes.size()), nullptr, nullptr, limit);
        const QVariant message = unpack(handle.get());
        const QVariantList parts = message.toList();
        if (parts.size() != 2 || parts.at(0).typeId() != QMetaType::QString ||
            parts.at(1).typeId() != QMetaType::QVariantList) {
            emit malformed(QStringLiteral("not a name and its arguments"));
            return;
        }
        name = parts.at(0).toString();
        arguments = parts.at(1).toList();
    } catch (const std::exception &) { // whatever the unpacker finds wrong with the bytes
        emit malformed(QStringLiteral("%1 bytes that are no message").arg(bytes.size()));
        return;
    }
    emit messageReceived(name, arguments);
    if (!m_mute)
        answer(name, arguments);
}

void PluginPeer::answer(const QString &name, const QVariantList &arguments)
{
    const QString callsign = arguments.value(0).toString();
    if (name == QLatin1StringView("VER"))
        send(name, m_version < 0 ? QVariantList() : QVariantList{m_version});
    else if (name == QLatin1StringView("CSL"))
        send(name, {arguments.value(0).toList(), m_cslValid});
    else if (name == QLatin1StringView("ADD") && !callsign.isEmpty())
        send(QStringLiteral("ADDED"), {callsign});
    else if (name == QLatin1StringView("DEL") && !callsign.isEmpty())
        send(QStringLiteral("DELETED"), {callsign});
}

bool PluginPeer::send(const QString &name, const QVariantList &arguments)
{
    msgpack::sbuffer buffer;
    Packer packer(buffer);
    packer.pack_array(2);
    packer.pack(name.toStdString());
    pack(packer, QVariant(arguments));
    if (!sendRaw(QByteArray(buffer.data(), static_cast<qsizetype>(buffer.size()))))
        return false;
    emit messageSent(name, arguments);
    return true;
}

bool PluginPeer::sendRaw(const QByteArray &bytes)
{
    if (!m_socket)
        return false;
    QByteArray copy = bytes; // nng takes a pointer to bytes that it doesn't change
    return nng_send(m_socket->handle, copy.data(), static_cast<std::size_t>(copy.size()), NNG_FLAG_NONBLOCK) == 0;
}

bool PluginPeer::sendRadioMessage(const QString &message)
{
    return send(QStringLiteral("RDIOSENT"), {message});
}

bool PluginPeer::sendPrivateMessage(const QString &to, const QString &message)
{
    return send(QStringLiteral("PRIVSENT"), {to, message});
}

bool PluginPeer::requestStation(const QString &callsign)
{
    return send(QStringLiteral("REQSTATION"), {callsign});
}

bool PluginPeer::forceDisconnect(const QString &reason)
{
    return send(QStringLiteral("FORCEDISC"), {reason});
}

bool PluginPeer::shutDown()
{
    return send(QStringLiteral("SHUTDOWN"), {});
}

} // namespace tarvo::practice
