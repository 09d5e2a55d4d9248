#include "voice/engine/SoundThread.h"

#include <QDebug>

#include <utility>

namespace tarvo::voice {

namespace {

constexpr std::size_t mostTasks = 200; // a session's start leaves ten; the pilot's clicks on a test four each

} // namespace

SoundThread::SoundThread(std::chrono::milliseconds patience) : m_worker("sound", mostTasks)
{
    m_timer.setInterval(patience);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
}

bool SoundThread::post(common::Worker::Task task)
{
    const bool isTaken = m_worker.post([task = std::move(task), done = m_done] {
        task();
        ++*done;
    });
    if (!isTaken)
        qWarning() << "The sound system doesn't answer: a request to it is dropped";
    if (!m_timer.isActive()) {
        m_doneBefore = *m_done;
        m_timer.start();
    }
    return isTaken;
}

void SoundThread::look()
{
    const bool hasMoved = m_doneBefore != std::exchange(m_doneBefore, *m_done);
    const bool isIdle = m_worker.isIdle();
    if (isIdle || !hasMoved)
        m_timer.stop(); // told once; the next request looks again
    if (!isIdle && !hasMoved)
        qWarning() << "The sound system hasn't answered for" << m_timer.interval() / 1000.0 << "s";
}

} // namespace tarvo::voice
