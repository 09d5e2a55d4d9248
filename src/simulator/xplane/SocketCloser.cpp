#include "simulator/xplane/SocketCloser.h"

#include <nng/supplemental/util/platform.h>

#include <QDebug>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

namespace tarvo::simulator::xplane {

namespace {

constexpr nng_duration quietMs = 20;
constexpr std::chrono::seconds longestDrain{1};
constexpr std::chrono::milliseconds longestWaitAtExit{100};

/// Counts the closers at work. Each of them shares in it, so that one which outlives the program's own objects still
/// finds it there.
class PendingClosers
{
public:
    void add()
    {
        const std::lock_guard lock(m_mutex);
        ++m_count;
    }

    void remove()
    {
        {
            const std::lock_guard lock(m_mutex);
            --m_count;
        }
        m_changed.notify_all();
    }

    bool wait(std::chrono::milliseconds longest)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, longest, [this] { return m_count == 0; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_count = 0;
};

/// Lets the program's exit wait a moment for the closers.
class ExitGuard
{
public:
    ExitGuard() = default;
    ~ExitGuard() { m_pending->wait(longestWaitAtExit); }
    ExitGuard(const ExitGuard &) = delete;
    ExitGuard &operator=(const ExitGuard &) = delete;

    const std::shared_ptr<PendingClosers> &pending() const { return m_pending; }

private:
    std::shared_ptr<PendingClosers> m_pending = std::make_shared<PendingClosers>();
};

const std::shared_ptr<PendingClosers> &pendingClosers()
{
    static const ExitGuard guard;
    return guard.pending();
}

} // namespace

void closeWhenQuiet(nng_socket socket)
{
    nng_socket_set_ms(socket, NNG_OPT_RECVTIMEO, quietMs);
    const auto deadline = std::chrono::steady_clock::now() + longestDrain;
    while (std::chrono::steady_clock::now() < deadline) {
        nng_msg *message = nullptr;
        if (nng_recvmsg(socket, &message, 0) != 0)
            break;
        nng_msg_free(message);
    }
    // A peer that floods without end: once nobody reads, its messages stop at the full queue, and nng_close, which
    // hangs while they pour in, gets through.
    nng_msleep(quietMs);
    nng_close(socket);
}

void closeInBackground(nng_socket socket)
{
    const std::shared_ptr<PendingClosers> &pending = pendingClosers();
    pending->add();
    try {
        std::thread([socket, pending] {
            closeWhenQuiet(socket);
            pending->remove();
        }).detach();
    } catch (const std::system_error &) {
        pending->remove();
        qWarning() << "X-Plane plugin socket stays open: no thread to close it";
    }
}

bool waitForClosers(std::chrono::milliseconds longest)
{
    return pendingClosers()->wait(longest);
}

} // namespace tarvo::simulator::xplane
