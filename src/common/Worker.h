#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace tarvo::common {

/// A thread that does tasks one after another, in the order in which they were posted. For what may keep its caller
/// waiting: sound systems, blocking connects, sockets that close. Nobody who uses one ever waits without a limit:
///
/// - the inbox is bounded, and post() says so instead of waiting;
/// - the end waits for so long and no longer. A task that is still at work then is left behind with its thread.
///
/// So a task owns what it uses: it captures values and shared pointers, never `this` of an object that may go. A task
/// that blocks is woken by its owner, who knows how (stops the operation, shuts the socket down) and does so before
/// finish(). For a task that runs for as long as its owner lives, such as a receive loop, a capacity of 1 will do.
///
/// What a task has to say goes back as a queued signal, or by QMetaObject::invokeMethod with the receiver as context.
/// All members are for one thread, the owner's.
class Worker
{
public:
    using Task = std::function<void()>;

    /// How the thread spends the time between tasks.
    enum class Between
    {
        Sleep,
        /// In an event loop: for tasks that make objects which need events, such as a media player. They live on until
        /// the thread's end; the last task can destroy them. Needs the application object.
        HandleEvents,
    };

    static constexpr std::chrono::milliseconds usualPatience{2000};

    /// `name`: for the log. `capacity`: the most tasks that may wait. The thread starts with the first task.
    Worker(std::string name, std::size_t capacity, Between between = Between::Sleep);
    /// finish() with the usual patience.
    ~Worker();
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    /// Leaves a task for the thread; never waits. False, and the task is dropped, when `capacity` tasks wait, when the
    /// end has begun, or when no thread is to be had.
    bool post(Task task);
    /// Forgets the tasks that have not begun.
    void clear();
    /// True when no task is at work and none waits.
    bool isIdle() const;
    /// Waits until that is so; false when it takes longer.
    bool waitUntilIdle(std::chrono::milliseconds longest) const;
    /// Takes no further task, and lets the thread end by itself when those that wait are done.
    void endSoon();
    /// The same, and waits for the thread. False, with a warning, when that takes longer than `longest`: then the tasks
    /// that have not begun are forgotten, and the one at work is left behind. Call clear() before where only that one
    /// matters.
    bool finish(std::chrono::milliseconds longest = usualPatience);
    /// Takes no further task, forgets those that wait, and leaves the one at work behind at once: for what can't be
    /// called off, and whose outcome nobody wants any more.
    void leave();

private:
    struct State;

    std::shared_ptr<State> m_state; ///< the thread's too, so that one left behind still finds it
    std::thread m_thread;
};

} // namespace tarvo::common
