#include "simulator/xplane/PipeWatch.h"

namespace tarvo::simulator::xplane {

PipeWatch::PipeWatch(nng_socket socket)
{
    for (const nng_pipe_ev event : {NNG_PIPE_EV_ADD_POST, NNG_PIPE_EV_REM_POST})
        nng_pipe_notify(socket, event, &PipeWatch::onEvent, this);
}

bool PipeWatch::isConnected() const
{
    const std::lock_guard lock(m_mutex);
    return m_pipe != 0;
}

void PipeWatch::onAdded(int pipe)
{
    const std::lock_guard lock(m_mutex);
    if (pipe == m_lastUnknown)
        return;
    m_pipe = pipe;
    emit changed(true);
}

void PipeWatch::onRemoved(int pipe)
{
    const std::lock_guard lock(m_mutex);
    if (pipe != m_pipe) {
        m_lastUnknown = pipe;
        return;
    }
    m_pipe = 0;
    emit changed(false);
}

void PipeWatch::onEvent(nng_pipe pipe, nng_pipe_ev event, void *watch)
{
    auto *self = static_cast<PipeWatch *>(watch);
    const int id = nng_pipe_id(pipe);
    if (event == NNG_PIPE_EV_ADD_POST)
        self->onAdded(id);
    else
        self->onRemoved(id);
}

} // namespace tarvo::simulator::xplane
