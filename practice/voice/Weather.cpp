#include "practice/voice/Weather.h"

#include <algorithm>

namespace tarvo::practice {

bool Weather::happens(double percent)
{
    constexpr double all = 100;
    return percent > 0 && std::uniform_real_distribution(0.0, all)(m_random) < percent;
}

void Weather::put(const VoiceDatagram &datagram, qint64 now)
{
    if (happens(m_settings.lossPercent))
        return;
    delay(datagram, now);
    if (happens(m_settings.duplicatePercent))
        delay(datagram, now);
}

void Weather::delay(const VoiceDatagram &datagram, qint64 now)
{
    const int late = m_settings.jitterMs > 0 ? std::uniform_int_distribution(0, m_settings.jitterMs)(m_random) : 0;
    const qint64 due = now + late;
    const auto place = std::upper_bound(m_delayed.begin(), m_delayed.end(), due,
                                        [](qint64 ms, const Delayed &other) { return ms < other.dueMs; });
    m_delayed.insert(place, {due, datagram});
}

QList<VoiceDatagram> Weather::takeDue(qint64 now)
{
    QList<VoiceDatagram> due;
    while (!m_delayed.isEmpty() && (m_delayed.constFirst().dueMs <= now || m_delayed.size() > mostDelayed))
        due.append(m_delayed.takeFirst().datagram);
    return due;
}

} // namespace tarvo::practice
