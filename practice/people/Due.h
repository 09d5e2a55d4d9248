#pragma once

#include <QtGlobal>

namespace tarvo::practice {

/// True once `next` is reached; then moves it on by the interval, or past `now` when more than one is missed. An
/// interval of 0 is never due.
inline bool isDue(qint64 &next, int intervalMs, qint64 now)
{
    if (intervalMs <= 0 || now < next)
        return false;
    next += intervalMs;
    if (next <= now)
        next = now + intervalMs;
    return true;
}

} // namespace tarvo::practice
