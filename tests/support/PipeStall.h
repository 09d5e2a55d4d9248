#pragma once

#include <nng/nng.h>
#include <nng/protocol/pair1/pair.h>

#include <condition_variable>
#include <mutex>
#include <string>

namespace tarvo::test {

/// While it lives, the message library ends no pipe of this process, so that no nng_close() of a connected socket
/// returns: as after the flaw that SocketCloser.h tells of.
class PipeStall
{
public:
    PipeStall()
    {
        const std::string url = "inproc://stall-" + std::to_string(reinterpret_cast<std::uintptr_t>(this));
        nng_pair1_open(&m_stalled);
        nng_pair1_open(&m_peer);
        nng_pipe_notify(m_stalled, NNG_PIPE_EV_ADD_POST, &PipeStall::onPipeEvent, this);
        nng_pipe_notify(m_stalled, NNG_PIPE_EV_REM_POST, &PipeStall::onPipeEvent, this);
        nng_listen(m_stalled, url.c_str(), nullptr, 0);
        nng_dial(m_peer, url.c_str(), nullptr, 0);
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_pipe.id != 0; });
        lock.unlock();
        nng_pipe_close(m_pipe);
        lock.lock();
        m_changed.wait(lock, [this] { return m_stalls; });
    }
    PipeStall(const PipeStall &) = delete;
    PipeStall &operator=(const PipeStall &) = delete;
    ~PipeStall()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_ended = true;
        }
        m_changed.notify_all();
        nng_close(m_peer);
        nng_close(m_stalled);
    }

private:
    /// The library ends all pipes on one thread, and tells of the end there.
    static void onPipeEvent(nng_pipe pipe, nng_pipe_ev event, void *stall)
    {
        auto *self = static_cast<PipeStall *>(stall);
        std::unique_lock lock(self->m_mutex);
        if (event == NNG_PIPE_EV_ADD_POST)
            self->m_pipe = pipe;
        else
            self->m_stalls = true;
        self->m_changed.notify_all();
        if (event == NNG_PIPE_EV_REM_POST)
            self->m_changed.wait(lock, [self] { return self->m_ended; });
    }

    nng_socket m_stalled = NNG_SOCKET_INITIALIZER;
    nng_socket m_peer = NNG_SOCKET_INITIALIZER;
    nng_pipe m_pipe = NNG_PIPE_INITIALIZER;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_stalls = false;
    bool m_ended = false;
};

} // namespace tarvo::test
