#include "manager/RequestPace.h"

#include "common/Callsign.h"

namespace tarvo::manager {

bool RequestPace::isDue(const QString &callsign, qint64 nowMs)
{
    if (callsign.size() > common::longestCallsign)
        return false;
    const auto asked = m_asked.constFind(callsign);
    return asked == m_asked.constEnd() ? hasRoom(nowMs) : nowMs - *asked >= m_intervalMs;
}

void RequestPace::note(const QString &callsign, qint64 nowMs)
{
    if (m_asked.contains(callsign) || hasRoom(nowMs))
        m_asked.insert(callsign, nowMs);
}

/// Sweeps once in an interval at most, so that a flood of invented callsigns doesn't cost a search for each.
bool RequestPace::hasRoom(qint64 nowMs)
{
    if (m_asked.size() >= maximumCallsigns && nowMs - m_swept >= m_intervalMs) {
        m_swept = nowMs;
        m_asked.removeIf([&](const auto &asked) { return nowMs - asked.value() >= m_intervalMs; });
    }
    return m_asked.size() < maximumCallsigns;
}

} // namespace tarvo::manager
