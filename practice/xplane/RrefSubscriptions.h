#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QList>

#include <functional>
#include <map>
#include <vector>

namespace tarvo::practice {

/// Who wants which dataref how often. Bounded: the client that subscribed longest ago gives way to a new one.
class RrefSubscriptions
{
public:
    static constexpr int maxClients = 16;
    static constexpr int maxPerClient = 512;
    static constexpr int maxRate = 99; ///< per second
    static constexpr int maxDatagram = 1448;

    struct Datagram
    {
        QHostAddress host;
        quint16 port = 0;
        QByteArray bytes;
    };

    /// Sends `id` with the value of `dataref` `ratePerSecond` times a second; 0 or less ends it. `nowMs` is any steady
    /// time. Returns false when the client has too many.
    bool subscribe(const QHostAddress &host, quint16 port, qint32 id, int dataref, int ratePerSecond, qint64 nowMs);
    /// The datagrams due at `nowMs`, as few as hold all records of a client.
    QList<Datagram> due(qint64 nowMs, const std::function<float(int dataref)> &value);
    int count() const;
    void clear();

private:
    struct Entry
    {
        int dataref = 0;
        int rate = 0;
        double nextMs = 0;
    };
    struct Client
    {
        QHostAddress host;
        quint16 port = 0;
        qint64 lastHeardMs = 0;
        std::map<qint32, Entry> entries;
    };

    Client *client(const QHostAddress &host, quint16 port, qint64 nowMs);

    std::vector<Client> m_clients;
};

} // namespace tarvo::practice
