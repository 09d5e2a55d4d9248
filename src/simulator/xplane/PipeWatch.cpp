#include "simulator/xplane/PipeWatch.h"

namespace tarvo::simulator::xplane {

PipeWatch::PipeWatch(nng_socket socket)
{
    for (const nng_pipe_ev event : {NNG_PIPE_EV_ADD_POST, NNG_PIPE_EV_REM_POST})
        nng_pipe_notify(socket, event, &PipeWatch::onEvent, this);
}

void PipeWatch::onEvent(nng_pipe pipe, nng_pipe_ev event, void *watch)
{
    auto *self = static_cast<PipeWatch *>(watch);
    int id = nng_pipe_id(pipe);
    const bool added = event == NNG_PIPE_EV_ADD_POST;
    if (added)
        self->m_pipe = id;
    else if (!self->m_pipe.compare_exchange_strong(id, 0))
        return; // nng also tells of the end of a pipe that never came up
    emit self->changed(added);
}

} // namespace tarvo::simulator::xplane
