#include "voice/engine/SoundThread.h"

#include <QDebug>

#include <utility>

namespace tarvo::voice {

namespace {

constexpr std::size_t mostTasks = 200; // a session's start leaves ten; the pilot's clicks on a test four each

} // namespace

SoundThread::SoundThread() : m_worker("sound", mostTasks) {}

bool SoundThread::post(common::Worker::Task task)
{
    const bool isTaken = m_worker.post(std::move(task));
    if (!isTaken)
        qWarning() << "The sound system doesn't answer: a request to it is dropped";
    return isTaken;
}

} // namespace tarvo::voice
