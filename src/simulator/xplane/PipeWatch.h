#pragma once

#include <nng/nng.h>

#include <QObject>

#include <atomic>

namespace tarvo::simulator::xplane {

/// Whether a plugin is connected to a pair socket. nng's threads may still be at it for as long as the socket isn't
/// closed: so it is shared with whoever closes that.
class PipeWatch : public QObject
{
    Q_OBJECT

public:
    explicit PipeWatch(nng_socket socket);

    bool isConnected() const { return m_pipe != 0; }

signals:
    /// Raised by a thread of nng's.
    void changed(bool connected);

private:
    static void onEvent(nng_pipe pipe, nng_pipe_ev event, void *watch);

    std::atomic<int> m_pipe = 0; ///< the id of the one that is up, over 0
};

} // namespace tarvo::simulator::xplane
