#pragma once

#include "common/Worker.h"

#include <QTimer>

#include <atomic>
#include <chrono>
#include <memory>

namespace tarvo::voice {

/// The one thread on which PortAudio is called, in the order in which it was asked to. A sound server that hangs keeps
/// this thread waiting and nobody else; the log tells. One in the program, shared by all that make sound; none of its
/// tasks may own it. All members are for its owner's thread.
class SoundThread
{
public:
    /// `patience`: how long a task may take before the log tells.
    explicit SoundThread(std::chrono::milliseconds patience = std::chrono::seconds(5));

    /// Leaves a task for the thread; never waits. False when so many wait that the sound system can't be well, or at
    /// the end; the log tells.
    bool post(common::Worker::Task task);
    /// Waits until there is nothing left to do; false when it takes longer.
    bool waitUntilIdle(std::chrono::milliseconds longest) const { return m_worker.waitUntilIdle(longest); }
    /// Forgets the tasks that have not begun; for tests that are to go without PortAudio.
    void clear() { m_worker.clear(); }

private:
    void look();

    std::shared_ptr<std::atomic<int>> m_done = std::make_shared<std::atomic<int>>(0); ///< tasks that have ended
    int m_doneBefore = 0;
    QTimer m_timer; ///< runs while there is something to do
    common::Worker m_worker;
};

} // namespace tarvo::voice
