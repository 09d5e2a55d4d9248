#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>
#include <utility>

namespace tarvo::voice {

/// The way back to an object that may have gone: what is sent from any thread is called on the object's own, in order.
/// Shared by both sides; the receiver keeps it until its end.
///
/// The calls are handed over under a lock of its own and not within Qt's event, so that ThreadSanitizer sees it.
class Mailbox : public QObject
{
    Q_OBJECT

public:
    explicit Mailbox(QObject *receiver)
    {
        connect(
            this, &Mailbox::sent, receiver, [this] { callNext(); }, Qt::QueuedConnection);
    }

    /// For the receiver's destructor. Nothing is called any more.
    void close()
    {
        std::deque<std::function<void()>> forgotten; // goes when the lock is free again
        const std::scoped_lock lock(m_mutex);
        m_isClosed = true;
        forgotten.swap(m_calls);
    }

    void send(std::function<void()> call)
    {
        {
            const std::scoped_lock lock(m_mutex);
            if (m_isClosed)
                return;
            m_calls.push_back(std::move(call));
        }
        emit sent();
    }

signals:
    void sent();

private:
    void callNext()
    {
        std::function<void()> call;
        {
            const std::scoped_lock lock(m_mutex);
            if (m_calls.empty())
                return;
            call = std::move(m_calls.front());
            m_calls.pop_front();
        }
        call();
    }

    std::mutex m_mutex;
    std::deque<std::function<void()>> m_calls;
    bool m_isClosed = false;
};

} // namespace tarvo::voice
