#pragma once

#include <QTcpServer>

namespace tarvo::practice {

/// The listening socket under the HTTP server, with limits that the HTTP server itself doesn't have: on connections, on
/// the bytes of one request and on the time that a connection may be idle. Who passes one is cut off.
class HttpGuard : public QTcpServer
{
    Q_OBJECT

public:
    static constexpr int maxConnections = 64;
    static constexpr qint64 maxRequestBytes = 64 * 1024;
    static constexpr int maxIdleMs = 60'000;

    using QTcpServer::QTcpServer;

protected:
    void incomingConnection(qintptr handle) override;

private:
    void watch(QTcpSocket *socket);

    int m_open = 0;
};

} // namespace tarvo::practice
