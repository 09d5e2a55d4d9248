#include "support/VoicePeer.h"

#include "support/Patience.h"

#include <QDebug>
#include <QNetworkDatagram>

#include <utility>

namespace tarvo::test {

VoicePeer::VoicePeer(const QHostAddress &address) : m_address(address)
{
    connect(&m_server, &QTcpServer::newConnection, this, &VoicePeer::onConnection);
    connect(&m_udp, &QUdpSocket::readyRead, this, &VoicePeer::onDatagrams);
    if (!m_server.listen(address) || !m_udp.bind(address))
        qWarning() << "VoicePeer does not listen:" << m_server.errorString() << m_udp.errorString();
    m_port = m_server.serverPort();
}

VoicePeer::~VoicePeer()
{
    for (QTcpSocket *client : std::as_const(m_clients))
        client->disconnect(this); // it closes when the server goes
}

ServiceEndpoints VoicePeer::endpoints() const
{
    ServiceEndpoints endpoints;
    endpoints.voiceHost = m_address.toString();
    endpoints.voiceTcpPort = m_port;
    endpoints.voiceUdpPort = m_udp.localPort();
    return endpoints;
}

void VoicePeer::onConnection()
{
    while (QTcpSocket *client = m_server.nextPendingConnection()) {
        ++m_connections;
        m_clients.append(client);
        connect(client, &QTcpSocket::readyRead, this, [this, client] {
            if (client == m_client && m_reads)
                m_received += client->readAll();
        });
        connect(client, &QTcpSocket::disconnected, this, &VoicePeer::turnToWhoIsLeft);
        client->setReadBufferSize(m_reads ? 0 : 1);
        turnTo(client);
        if (m_refuses)
            client->disconnectFromHost();
    }
}

void VoicePeer::turnTo(QTcpSocket *client)
{
    m_client = client;
    m_received = m_reads ? client->readAll() : QByteArray();
}

/// Connections of one moment come in in any order: the newest need not be the one that stays.
void VoicePeer::turnToWhoIsLeft()
{
    m_clients.removeIf([](const QTcpSocket *client) { return client->state() != QAbstractSocket::ConnectedState; });
    if (!isClientConnected() && !m_clients.isEmpty())
        turnTo(m_clients.last());
}

void VoicePeer::onDatagrams()
{
    while (m_udp.hasPendingDatagrams()) {
        const QNetworkDatagram datagram = m_udp.receiveDatagram();
        m_clientAddress = datagram.senderAddress();
        m_clientPort = static_cast<quint16>(datagram.senderPort());
        m_datagrams.append(datagram.data());
    }
}

bool VoicePeer::waitForConnection(int count)
{
    return waitFor([this, count] { return m_connections >= count; });
}

bool VoicePeer::isClientConnected() const
{
    return m_client && m_client->state() == QAbstractSocket::ConnectedState;
}

void VoicePeer::injectBytes(const QByteArray &bytes)
{
    if (!waitForConnection()) {
        qWarning() << "No client to send to:" << bytes.left(100);
        return;
    }
    m_client->write(bytes);
    m_client->flush();
}

QByteArray VoicePeer::nextLine()
{
    if (!waitFor([this] { return m_received.contains('\n'); }))
        return {};
    const qsizetype end = m_received.indexOf('\n');
    const QByteArray line = m_received.first(end);
    m_received.remove(0, end + 1);
    return line;
}

bool VoicePeer::expect(const QByteArray &line)
{
    const QByteArray got = nextLine();
    if (got == line && !got.isNull())
        return true;
    qWarning() << "expected line:" << line << "received line:" << got;
    return false;
}

QByteArray VoicePeer::untilClosed()
{
    if (!waitFor([this] { return m_connections > 0 && !isClientConnected(); }))
        return {};
    return std::exchange(m_received, {});
}

void VoicePeer::stopReading()
{
    m_reads = false;
    if (m_client)
        m_client->setReadBufferSize(1);
}

void VoicePeer::readAgain()
{
    m_reads = true;
    if (!m_client)
        return;
    m_client->setReadBufferSize(0);
    m_received += m_client->readAll();
}

bool VoicePeer::serveAgain()
{
    return m_server.listen(m_address, m_port);
}

void VoicePeer::closeConnection()
{
    if (m_client)
        m_client->disconnectFromHost();
}

void VoicePeer::abortConnection()
{
    if (m_client)
        m_client->abort();
}

QByteArray VoicePeer::nextDatagram()
{
    if (!waitFor([this] { return !m_datagrams.isEmpty(); }))
        return {};
    return m_datagrams.takeFirst();
}

void VoicePeer::sendDatagram(const QByteArray &bytes)
{
    if (waitFor([this] { return m_clientPort != 0; }))
        m_udp.writeDatagram(bytes, m_clientAddress, m_clientPort);
}

void VoicePeer::sendDatagramToClientOf(const VoicePeer &other, const QByteArray &bytes)
{
    m_udp.writeDatagram(bytes, other.m_clientAddress, other.m_clientPort);
}

} // namespace tarvo::test
