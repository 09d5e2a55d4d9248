#include "support/PluginPeer.h"

#include "common/nng/SocketCloser.h"

#include <nng/protocol/pair1/pair.h>

#include <msgpack.hpp>

#include <QMetaType>

namespace tarvo::test {

namespace {

using Packer = msgpack::packer<msgpack::sbuffer>;

void packVariant(Packer &packer, const QVariant &value)
{
    switch (value.metaType().id()) {
    case QMetaType::UnknownType:
        packer.pack_nil();
        break;
    case QMetaType::Bool:
        packer.pack(value.toBool());
        break;
    case QMetaType::Double:
        packer.pack(value.toDouble());
        break;
    case QMetaType::QString:
        packer.pack(value.toString().toStdString());
        break;
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        packer.pack_array(static_cast<uint32_t>(list.size()));
        for (const QVariant &item : list)
            packVariant(packer, item);
        break;
    }
    default:
        packer.pack(value.toLongLong());
    }
}

QVariant unpackVariant(const msgpack::object &value)
{
    switch (value.type) {
    case msgpack::type::BOOLEAN:
        return value.via.boolean;
    case msgpack::type::POSITIVE_INTEGER:
    case msgpack::type::NEGATIVE_INTEGER:
        return static_cast<qlonglong>(value.as<int64_t>());
    case msgpack::type::FLOAT32:
    case msgpack::type::FLOAT64:
        return value.via.f64;
    case msgpack::type::STR:
        return QString::fromStdString(value.as<std::string>());
    case msgpack::type::ARRAY: {
        QVariantList list;
        for (uint32_t i = 0; i < value.via.array.size; ++i)
            list.append(unpackVariant(value.via.array.ptr[i]));
        return list;
    }
    default:
        return {};
    }
}

/// Name and arguments; an empty list when the bytes are no message.
QVariantList unpackMessage(const QByteArray &bytes)
{
    try {
        const auto handle = msgpack::unpack(bytes.constData(), static_cast<size_t>(bytes.size()));
        return unpackVariant(handle.get()).toList();
    } catch (const std::exception &) {
        return {};
    }
}

} // namespace

PluginPeer::PluginPeer(const QString &url, QObject *parent) : QObject(parent)
{
    int result = nng_pair1_open(&m_socket);
    if (result == 0)
        result = nng_socket_set_int(m_socket, NNG_OPT_RECVBUF, 8192);
    if (result == 0)
        result = nng_socket_set_int(m_socket, NNG_OPT_SENDBUF, 8192);
    nng_pipe_notify(m_socket, NNG_PIPE_EV_ADD_POST, &PluginPeer::onPipeEvent, this);
    nng_pipe_notify(m_socket, NNG_PIPE_EV_REM_POST, &PluginPeer::onPipeEvent, this);
    if (result == 0)
        result = nng_listen(m_socket, url.toUtf8().constData(), nullptr, 0);
    if (result != 0)
        qFatal("no listener at %s: %s", qPrintable(url), nng_strerror(result));
    nng_aio_alloc(&m_receive, nullptr, nullptr);
    m_thread = std::thread([this] { receiveLoop(); });
}

PluginPeer::~PluginPeer()
{
    nng_aio_stop(m_receive);
    m_thread.join();
    nng_aio_free(m_receive);
    // Should the close outlast its time, nothing is to come here any more.
    nng_pipe_notify(m_socket, NNG_PIPE_EV_ADD_POST, nullptr, nullptr);
    nng_pipe_notify(m_socket, NNG_PIPE_EV_REM_POST, nullptr, nullptr);
    common::closeAndWait(m_socket);
}

QList<QByteArray> PluginPeer::messages() const
{
    const std::lock_guard lock(m_mutex);
    return m_messages;
}

QStringList PluginPeer::names() const
{
    QStringList names;
    for (const QByteArray &message : messages())
        names.append(unpackMessage(message).value(0).toString());
    return names;
}

QVariantList PluginPeer::arguments(const QString &name) const
{
    QVariantList arguments;
    for (const QByteArray &message : messages()) {
        const QVariantList parts = unpackMessage(message);
        if (parts.value(0).toString() == name)
            arguments = parts.value(1).toList();
    }
    return arguments;
}

void PluginPeer::clear()
{
    const std::lock_guard lock(m_mutex);
    m_messages.clear();
}

bool PluginPeer::hasClient() const
{
    const std::lock_guard lock(m_mutex);
    return m_clients > 0;
}

void PluginPeer::sendRaw(const QByteArray &bytes)
{
    nng_send(m_socket, const_cast<char *>(bytes.constData()), static_cast<size_t>(bytes.size()), NNG_FLAG_NONBLOCK);
}

void PluginPeer::send(const QString &name, const QVariantList &arguments)
{
    sendRaw(packPluginMessage(name, arguments));
}

void PluginPeer::receiveLoop()
{
    for (;;) {
        nng_recv_aio(m_socket, m_receive);
        nng_aio_wait(m_receive);
        if (nng_aio_result(m_receive) != 0)
            return;
        nng_msg *message = nng_aio_get_msg(m_receive);
        {
            const std::lock_guard lock(m_mutex);
            m_messages.append(QByteArray(static_cast<const char *>(nng_msg_body(message)),
                                         static_cast<qsizetype>(nng_msg_len(message))));
        }
        nng_msg_free(message);
        emit arrived();
    }
}

void PluginPeer::onPipeEvent(nng_pipe, nng_pipe_ev event, void *peer)
{
    auto *self = static_cast<PluginPeer *>(peer);
    const std::lock_guard lock(self->m_mutex);
    self->m_clients += event == NNG_PIPE_EV_ADD_POST ? 1 : -1;
}

QByteArray packPluginMessage(const QString &name, const QVariantList &arguments)
{
    msgpack::sbuffer buffer;
    Packer packer(buffer);
    packer.pack_array(2);
    packVariant(packer, name);
    packVariant(packer, QVariant(arguments));
    return {buffer.data(), static_cast<qsizetype>(buffer.size())};
}

} // namespace tarvo::test
