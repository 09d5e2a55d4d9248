#pragma once

#include <QMetaObject>
#include <QObject>

#include <mutex>
#include <utility>

namespace tarvo::voice {

/// The way back to an object that may have gone: what is sent from any thread is called on the object's own, in order.
/// Shared by both sides.
class Mailbox
{
public:
    explicit Mailbox(QObject *receiver) : m_receiver(receiver) {}

    /// For the receiver's destructor. Nothing is called any more.
    void close()
    {
        const std::scoped_lock lock(m_mutex);
        m_receiver = nullptr;
    }

    template <typename Call>
    void send(Call call)
    {
        const std::scoped_lock lock(m_mutex);
        if (m_receiver)
            QMetaObject::invokeMethod(m_receiver, std::move(call), Qt::QueuedConnection);
    }

private:
    std::mutex m_mutex;
    QObject *m_receiver;
};

} // namespace tarvo::voice
