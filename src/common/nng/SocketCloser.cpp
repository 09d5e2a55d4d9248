#include "common/nng/SocketCloser.h"

#include "common/Worker.h"

#include <nng/supplemental/util/platform.h>

#include <QDebug>

#include <algorithm>
#include <list>
#include <mutex>

namespace tarvo::common {

namespace {

using Clock = std::chrono::steady_clock;

constexpr nng_duration quietMs = 20;
constexpr std::chrono::milliseconds longestDrain{200};
constexpr std::chrono::milliseconds longestWaitAtExit{500};

std::chrono::milliseconds until(Clock::time_point deadline)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    return std::max(left, std::chrono::milliseconds(0));
}

void sendLastWords(nng_socket socket, const std::vector<nng_msg *> &messages)
{
    const auto deadline = Clock::now() + longestDrain;
    for (nng_msg *message : messages) {
        nng_socket_set_ms(socket, NNG_OPT_SENDTIMEO, static_cast<nng_duration>(until(deadline).count()));
        if (nng_sendmsg(socket, message, 0) != 0)
            nng_msg_free(message);
    }
}

void drain(nng_socket socket)
{
    nng_socket_set_ms(socket, NNG_OPT_RECVTIMEO, quietMs);
    const auto deadline = Clock::now() + longestDrain;
    nng_msg *message = nullptr;
    while (nng_recvmsg(socket, &message, 0) == 0) {
        nng_msg_free(message);
        if (Clock::now() >= deadline)
            return;
    }
}

void closeNow(nng_socket socket)
{
    drain(socket);
    // From now on every message is too large, which nng finds out in the first step, and then ends the pipe by itself,
    // in good order. One that was in the second step already gets a moment to come in.
    nng_socket_set_size(socket, NNG_OPT_RECVMAXSZ, 1);
    nng_msleep(quietMs);
    nng_close(socket);
}

/// The closers at work: a worker each, for one that hangs must not keep the others.
class Closers
{
public:
    /// Null, with a warning, when there is no thread.
    std::shared_ptr<Worker> start(nng_socket socket, std::vector<nng_msg *> lastWords, std::shared_ptr<const void> kept)
    {
        auto closer = std::make_shared<Worker>("socket closer", 1);
        const bool started = closer->post([socket, lastWords = std::move(lastWords), kept = std::move(kept)] {
            sendLastWords(socket, lastWords);
            closeNow(socket);
        });
        if (!started) {
            qWarning() << "Message socket stays open: no thread to close it";
            return nullptr;
        }
        closer->endSoon();
        reap();
        const std::lock_guard lock(m_mutex);
        m_closers.push_back(closer);
        return closer;
    }

    /// Joins those that are done.
    void reap()
    {
        const std::lock_guard lock(m_mutex);
        m_closers.remove_if([](const std::shared_ptr<Worker> &one) { return one->isIdle(); });
    }

    bool waitForAll(std::chrono::milliseconds longest)
    {
        const auto deadline = Clock::now() + longest;
        const auto closers = [this] {
            const std::lock_guard lock(m_mutex);
            return m_closers;
        }();
        return std::all_of(closers.begin(), closers.end(),
                           [deadline](const auto &one) { return one->waitUntilIdle(until(deadline)); });
    }

private:
    std::mutex m_mutex;
    std::list<std::shared_ptr<Worker>> m_closers;
};

/// Lets the program's exit wait a moment for the closers. They themselves stay: one that hangs may outlive all else.
struct ExitGuard
{
    ExitGuard() = default;
    ~ExitGuard()
    {
        closers.waitForAll(longestWaitAtExit);
        closers.reap();
    }
    ExitGuard(const ExitGuard &) = delete;
    ExitGuard &operator=(const ExitGuard &) = delete;

    Closers &closers = *new Closers;
};

Closers &closers()
{
    static ExitGuard guard;
    return guard.closers;
}

} // namespace

void closeInBackground(nng_socket socket, std::vector<nng_msg *> lastWords, std::shared_ptr<const void> kept)
{
    closers().start(socket, std::move(lastWords), std::move(kept));
}

bool closeAndWait(nng_socket socket, std::chrono::milliseconds longest)
{
    const std::shared_ptr<Worker> closer = closers().start(socket, {}, nullptr);
    if (!closer)
        return false;
    const bool ended = closer->waitUntilIdle(longest);
    if (!ended)
        qWarning() << "Message socket is left behind: its close has not ended after" << longest.count() << "ms";
    return ended;
}

bool waitForClosers(std::chrono::milliseconds longest)
{
    return closers().waitForAll(longest);
}

} // namespace tarvo::common
