#pragma once

#include "Peers.h"
#include "practice/PracticeNetwork.h"
#include "support/Patience.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QUdpSocket>

#include <utility>

namespace tarvo::test {

/// A client of the voice server that writes bytes and keeps what comes.
class VoicePeer
{
public:
    explicit VoicePeer(const practice::VoiceServer &server) : m_server(server)
    {
        QObject::connect(&tcp, &QTcpSocket::readyRead, &tcp, [this] { m_received += tcp.readAll(); });
        QObject::connect(&udp, &QUdpSocket::readyRead, &udp, [this] { readDatagrams(); });
        tcp.connectToHost(server.address(), server.tcpPort());
        udp.bind(server.address(), 0);
    }

    void write(const QByteArray &bytes) { tcp.write(bytes); }
    void send(const QByteArray &line) { tcp.write(line + '\n'); }
    void sendDatagram(const QByteArray &bytes) { udp.writeDatagram(bytes, m_server.address(), m_server.udpPort()); }

    /// The datagram of a frame of `payload` from transmitter 0. `number`: of the account.
    static QByteArray datagram(int number, int frequency, const QByteArray &callsign, const QByteArray &payload)
    {
        QByteArray bytes;
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(number >> shift & 0xFF);
        bytes += '\0';
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(frequency >> shift & 0xFF);
        return bytes + static_cast<char>(callsign.size()) + callsign + payload + '\n';
    }

    /// A whole beginning: token and keep-alive, until greeted and until the server knows where the peer is. CIDs are
    /// 1001 to 1003; the numbers of their accounts are 1 to 3.
    bool join(practice::TokenAuthority &tokens, qint64 cid)
    {
        number = static_cast<int>(cid - 1000);
        send(tokens.issue(practice::TokenUse::Access, cid));
        sendDatagram(datagram(number, 0, {}, {}));
        return waitFor([this] { return got("Welcome"); }) && settle();
    }
    /// Waits until the server has handled all that was sent: lines, and datagrams, which the system hands over at once.
    bool settle()
    {
        const QByteArray mark = "\"data\":\"settled " + QByteArray::number(++m_mark) + "\"";
        send("{\"type\":\"ping\"," + mark + '}');
        return waitFor([&] { return got(mark); });
    }
    bool tune(int transmitter, int frequency, bool receive)
    {
        send(QByteArray(R"({"type":"channel","transmitter":)") + QByteArray::number(transmitter) + R"(,"data":")" +
             QByteArray::number(frequency) + (receive ? ":1" : ":0") + R"("})");
        return settle();
    }
    void speak(int frequency, const QByteArray &payload, const QByteArray &callsign = "ME")
    {
        sendDatagram(datagram(number, frequency, callsign, payload));
    }

    /// True once something with these bytes came on the control connection.
    bool got(const QByteArray &bytes) const { return m_received.contains(bytes); }
    const QByteArray &all() const { return m_received; }
    bool closed() const { return tcp.state() == QAbstractSocket::UnconnectedState; }
    QList<QByteArray> takeDatagrams() { return std::exchange(datagrams, {}); }

    QTcpSocket tcp;
    QUdpSocket udp;
    QList<QByteArray> datagrams;
    int number = 0;

    /// Takes what the system holds, whose room is small.
    void readDatagrams()
    {
        while (udp.hasPendingDatagrams()) {
            QByteArray bytes(static_cast<qsizetype>(udp.pendingDatagramSize()), Qt::Uninitialized);
            udp.readDatagram(bytes.data(), bytes.size());
            datagrams.append(bytes);
        }
    }

private:
    const practice::VoiceServer &m_server;
    QByteArray m_received;
    int m_mark = 0;
};

} // namespace tarvo::test
