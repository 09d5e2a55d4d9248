#include "traffic/PluginEnd.h"

#include "common/nng/SocketCloser.h"
#include "traffic/Ledger.h"

#include <nng/protocol/pair1/pair.h>

#include <msgpack.hpp>

#include <utility>

namespace tarvo::bench {

namespace {
constexpr int pluginBufferedMessages = 8192;
constexpr int version = 65536;

void send(nng_socket socket, const msgpack::sbuffer &buffer)
{
    nng_send(socket, const_cast<char *>(buffer.data()), buffer.size(), NNG_FLAG_NONBLOCK);
}
} // namespace

PluginEnd::PluginEnd(const QString &url, Receiver receiver) : m_receiver(std::move(receiver))
{
    if (nng_pair1_open(&m_socket) != 0)
        return;
    nng_socket_set_int(m_socket, NNG_OPT_RECVBUF, pluginBufferedMessages);
    nng_socket_set_int(m_socket, NNG_OPT_SENDBUF, pluginBufferedMessages);
    m_listening = nng_listen(m_socket, url.toUtf8().constData(), nullptr, 0) == 0 &&
                  nng_aio_alloc(&m_receive, nullptr, nullptr) == 0;
    if (m_listening)
        m_thread = std::thread([this] { receiveLoop(); });
}

PluginEnd::~PluginEnd()
{
    if (m_receive)
        nng_aio_stop(m_receive);
    if (m_thread.joinable())
        m_thread.join();
    nng_aio_free(m_receive);
    common::closeAndWait(m_socket);
}

void PluginEnd::receiveLoop()
{
    for (;;) {
        nng_recv_aio(m_socket, m_receive);
        nng_aio_wait(m_receive);
        if (nng_aio_result(m_receive) != 0)
            return;
        nng_msg *message = nng_aio_get_msg(m_receive);
        handle(message);
        nng_msg_free(message);
    }
}

void PluginEnd::handle(const nng_msg *message)
{
    const std::int64_t now = steadyNs();
    auto *body = static_cast<const char *>(nng_msg_body(const_cast<nng_msg *>(message)));
    const QByteArrayView bytes(body, static_cast<qsizetype>(nng_msg_len(message)));
    if (bytes.startsWith("\x92\xa3VER"))
        sayVersion();
    else if (const QString added = m_receiver(bytes, now); !added.isEmpty())
        say("ADDED", added);
}

void PluginEnd::say(const char *name, const QString &argument)
{
    msgpack::sbuffer buffer;
    msgpack::packer<msgpack::sbuffer> packer(buffer);
    packer.pack_array(2);
    packer.pack(name);
    packer.pack_array(1);
    packer.pack(argument.toStdString());
    send(m_socket, buffer);
}

void PluginEnd::sayVersion()
{
    msgpack::sbuffer buffer;
    msgpack::packer<msgpack::sbuffer> packer(buffer);
    packer.pack_array(2);
    packer.pack("VER");
    packer.pack_array(1);
    packer.pack(version);
    send(m_socket, buffer);
}

} // namespace tarvo::bench
