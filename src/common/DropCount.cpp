#include "common/DropCount.h"

#include <utility>

namespace tarvo::common {

DropCount::Line DropCount::add(qint64 nowMs, quint64 count)
{
    m_total += count;
    const bool logged = m_total >= m_nextLogged;
    if (logged)
        m_nextLogged = m_total < loggedBurst ? m_total + 1 : 2 * m_total;
    if (!m_warnedMs || nowMs - *m_warnedMs >= warningIntervalMs) {
        m_warnedMs = nowMs;
        return Line::Warning;
    }
    return logged ? Line::Debug : Line::None;
}

quint64 DropCount::reset()
{
    m_nextLogged = 1;
    return std::exchange(m_total, 0);
}

} // namespace tarvo::common
