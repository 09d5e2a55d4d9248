#pragma once

#include "common/Worker.h"

#include <chrono>

namespace tarvo::voice {

/// The one thread on which PortAudio is called, in the order in which it was asked to. A sound server that hangs keeps
/// this thread waiting and nobody else. One in the program, shared by all that make sound; none of its tasks may own
/// it. All members are for its owner's thread.
class SoundThread
{
public:
    SoundThread();

    /// Leaves a task for the thread; never waits. False when so many wait that the sound system can't be well, or at
    /// the end; the log tells.
    bool post(common::Worker::Task task);
    /// Waits until there is nothing left to do; false when it takes longer.
    bool waitUntilIdle(std::chrono::milliseconds longest) const { return m_worker.waitUntilIdle(longest); }

private:
    common::Worker m_worker;
};

} // namespace tarvo::voice
