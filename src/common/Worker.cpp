#include "common/Worker.h"

#include <QCoreApplication>
#include <QDebug>
#include <QEvent>
#include <QEventLoop>
#include <QObject>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <utility>

namespace tarvo::common {

namespace {

/// Takes the events that wake a thread which handles events.
class Bell : public QObject
{
public:
    explicit Bell(std::function<void()> answer) : m_answer(std::move(answer)) {}

    void ring() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); } // which the queue owns

protected:
    void customEvent(QEvent *) override { m_answer(); }

private:
    std::function<void()> m_answer;
};

} // namespace

struct Worker::State
{
    State(std::string nameOfThread, std::size_t most, Between rest)
        : name(std::move(nameOfThread)), capacity(most), between(rest)
    {
    }

    const std::string name;
    const std::size_t capacity;
    const Between between;

    mutable std::mutex mutex; ///< held for moments only; guards what follows
    mutable std::condition_variable changed;
    std::deque<Task> waiting;
    std::unique_ptr<Bell> bell; ///< there from the thread's first moment to the end of all; null for one that sleeps
    bool isAtWork = false;
    bool isEnding = false;
    bool hasEnded = false;

    bool isIdle() const { return waiting.empty() && !isAtWork; }

    /// What the thread does.
    void run()
    {
        if (between == Between::HandleEvents)
            handleEvents();
        else
            while (!doNext())
                sleep();
        const std::lock_guard lock(mutex);
        hasEnded = true;
        changed.notify_all();
    }

    /// Tells the thread that there is something new.
    void wake()
    {
        Bell *ringing = nullptr;
        {
            const std::lock_guard lock(mutex);
            ringing = bell.get();
        }
        changed.notify_all();
        if (ringing)
            ringing->ring();
    }

private:
    /// Does the task that waits longest. True when there is none and the end has come.
    bool doNext()
    {
        Task task;
        {
            const std::lock_guard lock(mutex);
            if (waiting.empty())
                return isEnding;
            task = std::move(waiting.front());
            waiting.pop_front();
            isAtWork = true;
        }
        task();
        task = nullptr; // whatever it owns goes before anybody hears that it is done
        const std::lock_guard lock(mutex);
        isAtWork = false;
        changed.notify_all();
        return false;
    }

    void sleep()
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return isEnding || !waiting.empty(); });
    }

    void handleEvents()
    {
        QEventLoop loop;
        auto made = std::make_unique<Bell>([this, &loop] {
            if (doNext())
                loop.quit();
        });
        std::size_t rings = 0; // of those who came before there was a bell
        {
            const std::lock_guard lock(mutex);
            bell = std::move(made);
            rings = waiting.size() + (isEnding ? 1 : 0);
        }
        for (; rings > 0; --rings)
            bell->ring();
        loop.exec();
    }
};

Worker::Worker(std::string name, std::size_t capacity, Between between)
    : m_state(std::make_shared<State>(std::move(name), capacity, between))
{
}

Worker::~Worker()
{
    finish();
}

bool Worker::post(Task task)
{
    {
        const std::lock_guard lock(m_state->mutex);
        if (m_state->isEnding || m_state->waiting.size() >= m_state->capacity)
            return false;
        m_state->waiting.push_back(std::move(task));
    }
    if (m_thread.joinable()) {
        m_state->wake();
        return true;
    }
    try {
        m_thread = std::thread([state = m_state] { state->run(); });
        return true;
    } catch (const std::system_error &) {
        clear();
        return false;
    }
}

void Worker::clear()
{
    std::deque<Task> forgotten; // goes when the lock is free again
    const std::lock_guard lock(m_state->mutex);
    forgotten.swap(m_state->waiting);
    m_state->changed.notify_all();
}

bool Worker::isIdle() const
{
    const std::lock_guard lock(m_state->mutex);
    return m_state->isIdle();
}

bool Worker::waitUntilIdle(std::chrono::milliseconds longest) const
{
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(lock, longest, [this] { return m_state->isIdle(); });
}

void Worker::endSoon()
{
    {
        const std::lock_guard lock(m_state->mutex);
        m_state->isEnding = true;
    }
    m_state->wake();
}

bool Worker::finish(std::chrono::milliseconds longest)
{
    endSoon();
    if (!m_thread.joinable())
        return true;
    bool ended = false;
    {
        std::unique_lock lock(m_state->mutex);
        ended = m_state->changed.wait_for(lock, longest, [this] { return m_state->hasEnded; });
    }
    if (ended) {
        m_thread.join();
        return true;
    }
    clear();
    qWarning("Thread \"%s\" is left behind: its task has not ended after %lld ms", m_state->name.c_str(),
             static_cast<long long>(longest.count()));
    m_thread.detach();
    return false;
}

void Worker::leave()
{
    clear();
    endSoon();
    if (m_thread.joinable())
        m_thread.detach();
}

} // namespace tarvo::common
