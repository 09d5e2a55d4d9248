#pragma once

#include <nng/nng.h>

#include <QObject>

#include <mutex>

namespace tarvo::simulator::xplane {

/// Whether a plugin is connected to a pair socket. Shared with whoever closes the socket: until that is done nng's
/// threads may still call it.
class PipeWatch : public QObject
{
    Q_OBJECT

public:
    PipeWatch() = default;
    /// Watches the socket's pipes.
    explicit PipeWatch(nng_socket socket);

    bool isConnected() const;

    // What nng tells, by the pipe's id. It also tells of the end of a pipe that never came up, and the end of one that
    // goes at once may overtake its beginning.
    void onAdded(int pipe);
    void onRemoved(int pipe);

signals:
    /// Raised by a thread of nng's.
    void changed(bool connected);

private:
    static void onEvent(nng_pipe pipe, nng_pipe_ev event, void *watch);

    mutable std::mutex m_mutex; ///< guards both below
    int m_pipe = 0;             ///< the one that is up; 0 for none
    int m_lastUnknown = 0;      ///< the last one that ended without having been up
};

} // namespace tarvo::simulator::xplane
