#include "support/DatarefPeer.h"

#include <QNetworkDatagram>
#include <QtEndian>

namespace tarvo::test {

namespace {

/// A zero-terminated name at `offset`.
QString nameAt(const QByteArray &datagram, qsizetype offset)
{
    return QString::fromLatin1(datagram.mid(offset).split('\0').first());
}

} // namespace

DatarefPeer::DatarefPeer(const QHostAddress &address, QObject *parent) : QObject(parent)
{
    connect(&m_socket, &QUdpSocket::readyRead, this, &DatarefPeer::receivePending);
    if (!m_socket.bind(address, 0))
        qFatal("no loopback UDP port: %s", qPrintable(m_socket.errorString()));
}

QMap<qint32, DatarefPeer::Subscription> DatarefPeer::subscriptions() const
{
    QMap<qint32, Subscription> subscriptions;
    for (const QByteArray &datagram : m_datagrams) {
        if (datagram.startsWith("RREF") && datagram.size() == 413)
            subscriptions.insert(qFromLittleEndian<qint32>(datagram.constData() + 9),
                                 {nameAt(datagram, 13), qFromLittleEndian<qint32>(datagram.constData() + 5)});
    }
    return subscriptions;
}

QList<DatarefPeer::Write> DatarefPeer::writes() const
{
    QList<Write> writes;
    for (const QByteArray &datagram : m_datagrams) {
        if (datagram.startsWith("DREF") && datagram.size() == 509)
            writes.append({nameAt(datagram, 9), qFromLittleEndian<float>(datagram.constData() + 5)});
    }
    return writes;
}

QStringList DatarefPeer::commands() const
{
    QStringList commands;
    for (const QByteArray &datagram : m_datagrams) {
        if (datagram.startsWith("CMND"))
            commands.append(nameAt(datagram, 5));
    }
    return commands;
}

void DatarefPeer::setClient(const QHostAddress &address, quint16 port)
{
    m_client = address;
    m_clientPort = port;
}

void DatarefPeer::report(const QList<Value> &values)
{
    QByteArray reply("RREF,");
    for (const auto &[id, value] : values) {
        char record[8];
        qToLittleEndian(id, record);
        qToLittleEndian(value, record + 4);
        reply.append(record, sizeof record);
    }
    sendRaw(reply);
}

void DatarefPeer::sendRaw(const QByteArray &datagram)
{
    m_socket.writeDatagram(datagram, m_client, m_clientPort);
}

void DatarefPeer::receivePending()
{
    while (m_socket.hasPendingDatagrams()) {
        const QNetworkDatagram datagram = m_socket.receiveDatagram();
        setClient(datagram.senderAddress(), static_cast<quint16>(datagram.senderPort()));
        m_datagrams.append(datagram.data());
        emit received(datagram.data());
    }
}

} // namespace tarvo::test
