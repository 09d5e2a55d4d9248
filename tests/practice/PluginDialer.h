#pragma once

#include "common/nng/SocketCloser.h"

#include <QByteArray>
#include <QString>

#include <nng/nng.h>
#include <nng/protocol/pair1/pair.h>

namespace tarvo::test {

/// The client's end of the socket, in bytes.
class PluginDialer
{
public:
    explicit PluginDialer(const QString &url)
    {
        nng_pair1_open(&m_socket);
        nng_socket_set_ms(m_socket, NNG_OPT_RECONNMINT, 10);
        nng_socket_set_int(m_socket, NNG_OPT_SENDBUF, 4096); // so that a message waits for the connection
        nng_socket_set_int(m_socket, NNG_OPT_RECVBUF, 4096);
        nng_dial(m_socket, url.toUtf8().constData(), nullptr, NNG_FLAG_NONBLOCK);
    }
    PluginDialer(const PluginDialer &) = delete;
    PluginDialer &operator=(const PluginDialer &) = delete;
    ~PluginDialer() { common::closeAndWait(m_socket); }

    bool send(QByteArray bytes)
    {
        return nng_send(m_socket, bytes.data(), static_cast<std::size_t>(bytes.size()), NNG_FLAG_NONBLOCK) == 0;
    }
    /// The next message, or nothing when there is none yet.
    QByteArray receive()
    {
        void *data = nullptr;
        std::size_t size = 0;
        if (nng_recv(m_socket, &data, &size, NNG_FLAG_ALLOC | NNG_FLAG_NONBLOCK) != 0)
            return {};
        const QByteArray bytes(static_cast<const char *>(data), static_cast<qsizetype>(size));
        nng_free(data, size);
        return bytes;
    }

private:
    nng_socket m_socket = NNG_SOCKET_INITIALIZER;
};

} // namespace tarvo::test
