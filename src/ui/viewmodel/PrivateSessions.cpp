#include "ui/viewmodel/PrivateSessions.h"

#include <algorithm>

namespace tarvo::ui {

bool PrivateSessions::contains(const QString &callsign) const
{
    return indexOf(callsign) >= 0;
}

bool PrivateSessions::open(const QString &callsign, const QString &kept, QString &evicted)
{
    if (contains(callsign))
        return false;
    if (m_sessions.size() >= maximumSessions)
        evicted = evict(kept);
    m_sessions.append({.callsign = callsign, .lastMessage = {}, .lastTime = {}, .activity = ++m_activity});
    return true;
}

void PrivateSessions::note(const QString &callsign, const QString &message, const QString &time)
{
    const qsizetype index = indexOf(callsign);
    if (index < 0)
        return;
    PrivateSession &session = m_sessions[index];
    session.lastMessage = message;
    session.lastTime = time;
    session.activity = ++m_activity;
}

bool PrivateSessions::close(const QString &callsign)
{
    const qsizetype index = indexOf(callsign);
    if (index < 0)
        return false;
    m_sessions.removeAt(index);
    return true;
}

qsizetype PrivateSessions::indexOf(const QString &callsign) const
{
    for (qsizetype i = 0; i < m_sessions.size(); ++i)
        if (m_sessions.at(i).callsign == callsign)
            return i;
    return -1;
}

QString PrivateSessions::evict(const QString &kept)
{
    const auto quieter = [&](const PrivateSession &left, const PrivateSession &right) {
        return left.callsign != kept && (right.callsign == kept || left.activity < right.activity);
    };
    const auto quietest = std::min_element(m_sessions.cbegin(), m_sessions.cend(), quieter);
    QString callsign = quietest->callsign;
    m_sessions.erase(quietest);
    return callsign;
}

} // namespace tarvo::ui
