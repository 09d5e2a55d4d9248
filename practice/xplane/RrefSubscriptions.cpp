#include "practice/xplane/RrefSubscriptions.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace tarvo::practice {

namespace {
constexpr qsizetype headSize = 5;
constexpr qsizetype recordSize = 8;
const QByteArray head("RREF,");

void appendRecord(QByteArray &bytes, qint32 id, float value)
{
    char record[recordSize];
    qToLittleEndian(id, record);
    qToLittleEndian(value, record + 4);
    bytes.append(record, recordSize);
}
} // namespace

RrefSubscriptions::Client *RrefSubscriptions::client(const QHostAddress &host, quint16 port, qint64 nowMs)
{
    auto found = std::find_if(m_clients.begin(), m_clients.end(),
                              [&](const Client &c) { return c.port == port && c.host == host; });
    if (found == m_clients.end()) {
        if (static_cast<int>(m_clients.size()) >= maxClients)
            m_clients.erase(std::min_element(m_clients.begin(), m_clients.end(), [](const Client &a, const Client &b) {
                return a.lastHeardMs < b.lastHeardMs;
            }));
        m_clients.push_back({host, port, nowMs, {}});
        found = m_clients.end() - 1;
    }
    found->lastHeardMs = nowMs;
    return &*found;
}

bool RrefSubscriptions::subscribe(const QHostAddress &host, quint16 port, qint32 id, int dataref, int ratePerSecond,
                                  qint64 nowMs)
{
    Client *subscriber = client(host, port, nowMs);
    if (ratePerSecond <= 0) {
        subscriber->entries.erase(id);
        return true;
    }
    if (static_cast<int>(subscriber->entries.size()) >= maxPerClient && !subscriber->entries.contains(id))
        return false;
    subscriber->entries[id] = {dataref, std::min(ratePerSecond, maxRate), static_cast<double>(nowMs)};
    return true;
}

QList<RrefSubscriptions::Datagram> RrefSubscriptions::due(qint64 nowMs, const std::function<float(int dataref)> &value)
{
    QList<Datagram> datagrams;
    const auto now = static_cast<double>(nowMs);
    for (Client &subscriber : m_clients) {
        QByteArray bytes = head;
        const auto flush = [&] {
            if (bytes.size() > headSize)
                datagrams.append({subscriber.host, subscriber.port, bytes});
            bytes = head;
        };
        for (auto &[id, entry] : subscriber.entries) {
            if (entry.nextMs > now)
                continue;
            const double interval = 1000.0 / entry.rate;
            // Keeps the rate on average; after a standstill it goes on from now instead of making up for it.
            entry.nextMs = now - entry.nextMs > interval ? now + interval : entry.nextMs + interval;
            if (bytes.size() + recordSize > maxDatagram)
                flush();
            appendRecord(bytes, id, value(entry.dataref));
        }
        flush();
    }
    return datagrams;
}

int RrefSubscriptions::count() const
{
    std::size_t sum = 0;
    for (const Client &subscriber : m_clients)
        sum += subscriber.entries.size();
    return static_cast<int>(sum);
}

void RrefSubscriptions::clear()
{
    m_clients.clear();
}

} // namespace tarvo::practice
