#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QList>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QUdpSocket>

#include <utility>

namespace tarvo::test {

/// X-Plane's UDP interface, played on a loopback port of its own. Keeps what arrives and replies to whoever sent last.
class DatarefPeer : public QObject
{
    Q_OBJECT

public:
    struct Subscription
    {
        QString dataref;
        qint32 rateHz;
        bool operator==(const Subscription &) const = default;
    };
    using Value = std::pair<quint32, float>; ///< id and value
    using Write = std::pair<QString, float>; ///< dataref and value

    explicit DatarefPeer(const QHostAddress &address = QHostAddress(QHostAddress::LocalHost),
                         QObject *parent = nullptr);

    quint16 port() const { return m_socket.localPort(); }

    /// All that arrived since the beginning or the last clear(), in order.
    const QList<QByteArray> &datagrams() const { return m_datagrams; }
    QMap<qint32, Subscription> subscriptions() const;
    QList<Write> writes() const;
    QStringList commands() const;
    void clear() { m_datagrams.clear(); }

    /// Where to send to: by itself the sender of the last datagram.
    void setClient(const QHostAddress &address, quint16 port);
    quint16 clientPort() const { return m_clientPort; }

    /// Sends one reply that holds these values.
    void report(const QList<Value> &values);
    void report(quint32 id, float value) { report({{id, value}}); }
    void sendRaw(const QByteArray &datagram);

signals:
    /// Raised for each datagram that arrived.
    void received(const QByteArray &datagram);

private:
    void receivePending();

    QUdpSocket m_socket;
    QHostAddress m_client;
    quint16 m_clientPort = 0;
    QList<QByteArray> m_datagrams;
};

} // namespace tarvo::test
