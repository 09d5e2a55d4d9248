#include "common/nng/SocketCloser.h"

#include <nng/supplemental/util/platform.h>

#include <QDebug>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

namespace tarvo::common {

namespace {

constexpr nng_duration quietMs = 20;
constexpr std::chrono::milliseconds longestDrain{200};
constexpr std::chrono::milliseconds longestWaitAtExit{500};

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

void drain(nng_socket socket)
{
    nng_socket_set_ms(socket, NNG_OPT_RECVTIMEO, quietMs);
    const auto deadline = std::chrono::steady_clock::now() + longestDrain;
    nng_msg *message = nullptr;
    while (nng_recvmsg(socket, &message, 0) == 0) {
        nng_msg_free(message);
        if (std::chrono::steady_clock::now() >= deadline)
            return;
    }
}

void closeNow(nng_socket socket)
{
    drain(socket);
    // From now on every message is too large, which the library finds out in the first step, and then ends the pipe by
    // itself, in good order. One that was in the second step already gets a moment to come in.
    nng_socket_set_size(socket, NNG_OPT_RECVMAXSZ, 1);
    nng_msleep(quietMs);
    nng_close(socket);
}

/// Starts a thread that closes the socket and then counts itself out, here and in `own`. False when there is none.
bool startCloser(nng_socket socket, const std::shared_ptr<PendingClosers> &own)
{
    const std::shared_ptr<PendingClosers> &all = pendingClosers();
    all->add();
    own->add();
    try {
        std::thread([socket, all, own] {
            closeNow(socket);
            own->remove();
            all->remove();
        }).detach();
        return true;
    } catch (const std::system_error &) {
        own->remove();
        all->remove();
        qWarning() << "Message socket stays open: no thread to close it";
        return false;
    }
}

} // namespace

void closeInBackground(nng_socket socket)
{
    startCloser(socket, std::make_shared<PendingClosers>());
}

bool closeAndWait(nng_socket socket, std::chrono::milliseconds longest)
{
    const auto own = std::make_shared<PendingClosers>();
    if (!startCloser(socket, own))
        return false;
    const bool ended = own->wait(longest);
    if (!ended)
        qWarning() << "Message socket is left behind: its close has not ended after" << longest.count() << "ms";
    return ended;
}

bool waitForClosers(std::chrono::milliseconds longest)
{
    return pendingClosers()->wait(longest);
}

} // namespace tarvo::common
