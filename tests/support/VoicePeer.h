#pragma once

#include "ServiceEndpoints.h"

#include <QByteArray>
#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>

namespace tarvo::test {

/// A voice server that says what the test tells it. Knows its client's newest connection that stands.
class VoicePeer : public QObject
{
    Q_OBJECT

public:
    /// Serves on ports of its own.
    explicit VoicePeer(const QHostAddress &address = QHostAddress(QHostAddress::LocalHost));
    ~VoicePeer() override;

    /// Where it is.
    ServiceEndpoints endpoints() const;

    /// Waits until so many connections have come in since the beginning.
    bool waitForConnection(int count = 1);
    int connectionCount() const { return m_connections; }
    bool isClientConnected() const;

    /// Sends a line, or bytes as they stand, on the control connection.
    void inject(const QByteArray &line) { injectBytes(line + '\n'); }
    void injectBytes(const QByteArray &bytes);
    /// Waits for the next line and compares it.
    bool expect(const QByteArray &line);
    /// The next line without its end; null when none comes.
    QByteArray nextLine();
    /// Waits until the client has closed, and gives what it sent before that was not taken.
    QByteArray untilClosed();
    /// Reads no more of the control connection, so that the client can send no more in the end.
    void stopReading();
    void readAgain();
    /// Leaves the control port to nobody, and comes back to it.
    void stopServing() { m_server.close(); }
    bool serveAgain();
    /// Closes every control connection as soon as it comes in.
    void refuseAll() { m_refuses = true; }
    void closeConnection();
    void abortConnection();

    /// Waits for the next datagram; null when none comes.
    QByteArray nextDatagram();
    /// Sends one to where the newest came from.
    void sendDatagram(const QByteArray &bytes);
    /// Sends one to where another server's client is.
    void sendDatagramToClientOf(const VoicePeer &other, const QByteArray &bytes);

private:
    void onConnection();
    void turnTo(QTcpSocket *client);
    void turnToWhoIsLeft();
    void onDatagrams();

    const QHostAddress m_address;
    quint16 m_port = 0;
    QTcpServer m_server;
    QUdpSocket m_udp;
    QList<QTcpSocket *> m_clients; ///< that are connected, the newest last
    QPointer<QTcpSocket> m_client;
    QByteArray m_received;
    QList<QByteArray> m_datagrams;
    QHostAddress m_clientAddress;
    quint16 m_clientPort = 0;
    int m_connections = 0;
    bool m_reads = true;
    bool m_refuses = false;
};

} // namespace tarvo::test
