#include "simulator/xplane/PipeWatch.h"

namespace tarvo::simulator::xplane {

PipeWatch::PipeWatch(nng_socket socket)
{
    for (const nng_pipe_ev event : {NNG_PIPE_EV_ADD_POST, NNG_PIPE_EV_REM_POST})
        nng_pipe_notify(socket, event, &PipeWatch::onEvent, this);
}

void PipeWatch::onEvent(nng_pipe, nng_pipe_ev event, void *watch)
{
    auto *self = static_cast<PipeWatch *>(watch);
    const bool added = event == NNG_PIPE_EV_ADD_POST;
    self->m_pipes += added ? 1 : -1;
    emit self->changed(added);
}

} // namespace tarvo::simulator::xplane
