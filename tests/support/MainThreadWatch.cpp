#include "support/MainThreadWatch.h"

#include <algorithm>
#include <utility>

namespace tarvo::test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
const int MainThreadWatch::mostMs = 400;
#else
const int MainThreadWatch::mostMs = 50;
#endif

MainThreadWatch::MainThreadWatch(std::function<ThreadTime()> now) : m_now(std::move(now))
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(1);
    connect(&m_timer, &QTimer::timeout, this, &MainThreadWatch::beat);
    restart();
}

void MainThreadWatch::restart()
{
    m_longest = {};
    m_lastBeat = m_now();
    m_timer.start();
}

ThreadTime MainThreadWatch::sinceBeat() const
{
    const ThreadTime now = m_now();
    return {now.wallMs - m_lastBeat.wallMs, now.processorMs - m_lastBeat.processorMs};
}

ThreadTime MainThreadWatch::longest() const
{
    const ThreadTime current = sinceBeat();
    return {std::max(m_longest.wallMs, current.wallMs), std::max(m_longest.processorMs, current.processorMs)};
}

void MainThreadWatch::beat()
{
    m_longest = longest();
    m_lastBeat = m_now();
}

} // namespace tarvo::test
