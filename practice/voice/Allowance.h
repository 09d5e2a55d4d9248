#pragma once

#include <QtGlobal>

#include <algorithm>

namespace tarvo::practice {

/// So many things a second, and bursts of twice as many.
class Allowance
{
public:
    /// `now` is steady time, ms.
    Allowance(double perSecond, qint64 now) : m_perSecond(perSecond), m_left(2 * perSecond), m_updatedMs(now) {}

    /// False when that is too much.
    bool take(double count, qint64 now)
    {
        const double refill = m_perSecond * static_cast<double>(now - m_updatedMs) / 1000.0;
        m_left = std::min(2 * m_perSecond, m_left + refill) - count;
        m_updatedMs = now;
        if (m_left >= 0)
            return true;
        m_left = 0; // what is refused costs nothing
        return false;
    }

private:
    double m_perSecond;
    double m_left;
    qint64 m_updatedMs;
};

} // namespace tarvo::practice
