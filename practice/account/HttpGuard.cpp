#include "practice/account/HttpGuard.h"

#include <QTcpSocket>
#include <QTimer>

#include <memory>

namespace tarvo::practice {

void HttpGuard::incomingConnection(qintptr handle)
{
    auto socket = std::make_unique<QTcpSocket>();
    if (!socket->setSocketDescriptor(handle) || m_open >= maxConnections)
        return; // destroying the socket closes the connection
    QTcpSocket *kept = socket.release();
    kept->setParent(this);
    watch(kept);
    addPendingConnection(kept);
}

void HttpGuard::watch(QTcpSocket *socket)
{
    ++m_open;
    connect(socket, &QObject::destroyed, this, [this] { --m_open; });
    socket->setReadBufferSize(maxRequestBytes);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // an answer comes in several pieces

    auto *idle = new QTimer(socket);
    idle->setSingleShot(true);
    idle->start(maxIdleMs);
    connect(idle, &QTimer::timeout, socket, &QTcpSocket::abort);

    // Connected before the HTTP server reads, so that what is available is what has come since the last look.
    const auto received = std::make_shared<qint64>(0);
    connect(socket, &QTcpSocket::readyRead, this, [socket, idle, received] {
        idle->start(maxIdleMs);
        *received += socket->bytesAvailable();
        if (*received >= maxRequestBytes) // queued: the HTTP server is about to read from this socket
            QMetaObject::invokeMethod(socket, &QTcpSocket::abort, Qt::QueuedConnection);
    });
    connect(socket, &QTcpSocket::bytesWritten, this, [received] { *received = 0; }); // an answer ends a request
}

} // namespace tarvo::practice
