#include "support/PluginPeer.h"

#include "common/nng/SocketCloser.h"
#include "practice/xplane/PluginMessage.h"

#include <QHostAddress>
#include <QTcpServer>

#include <nng/protocol/pair1/pair.h>

namespace tarvo::test {

using practice::PluginMessage;

namespace {

/// An empty one when the bytes are no message.
PluginMessage unpacked(const QByteArray &bytes)
{
    QString error;
    return PluginMessage::fromBytes(bytes, &error).value_or(PluginMessage{});
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
    return {m_messages.begin(), m_messages.end()};
}

QStringList PluginPeer::names() const
{
    QStringList names;
    const QList<QByteArray> all = messages();
    for (const QByteArray &message : all)
        names.append(unpacked(message).name);
    return names;
}

QVariantList PluginPeer::arguments(const QString &name) const
{
    QVariantList arguments;
    const QList<QByteArray> all = messages();
    for (const QByteArray &message : all) {
        const PluginMessage got = unpacked(message);
        if (got.name == name)
            arguments = got.arguments;
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
            m_messages.emplace_back(static_cast<const char *>(nng_msg_body(message)),
                                    static_cast<qsizetype>(nng_msg_len(message)));
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

PluginAddressDir::PluginAddressDir()
{
    useIpc();
#ifdef Q_OS_WIN
    QTcpServer free;
    free.listen(QHostAddress::LocalHost);
    m_url = QStringLiteral("tcp://127.0.0.1:%1").arg(free.serverPort());
#endif
}

QByteArray packPluginMessage(const QString &name, const QVariantList &arguments)
{
    return PluginMessage{name, arguments}.toBytes();
}

} // namespace tarvo::test
