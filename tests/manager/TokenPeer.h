#pragma once

#include <QHostAddress>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

namespace tarvo::test {

/// An account service that knows one thing, the FSD token, and answers when the test tells it to: so that an answer can
/// come too late.
class TokenPeer
{
public:
    TokenPeer()
    {
        m_server.listen(QHostAddress::LocalHost);
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] { accept(); });
    }

    QString baseUrl() const { return QStringLiteral("http://127.0.0.1:%1/api").arg(m_server.serverPort()); }
    /// Requests that have come whole and have no answer yet.
    qsizetype waiting() const { return m_waiting.size(); }

    void grant(const QString &token) { answer(R"({"success":true,"token":")" + token.toUtf8() + R"("})"); }
    void refuse(const QString &error) { answer(R"({"success":false,"error_msg":")" + error.toUtf8() + R"("})"); }

private:
    void accept()
    {
        while (QTcpSocket *socket = m_server.nextPendingConnection()) {
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                if (socket->readAll().endsWith("\r\n\r\n"))
                    m_waiting.append(socket);
            });
        }
    }

    void answer(const QByteArray &body)
    {
        const QPointer<QTcpSocket> socket = m_waiting.takeFirst();
        if (!socket)
            return;
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
                      QByteArray::number(body.size()) + "\r\n\r\n" + body);
        socket->flush();
    }

    QTcpServer m_server;
    QList<QPointer<QTcpSocket>> m_waiting;
};

} // namespace tarvo::test
