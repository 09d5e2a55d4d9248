#include "simulator/xplane/MessageThreads.h"

#include <nng/nng.h>

#include <sched.h>

namespace tarvo::simulator::xplane {

namespace {

/// nng ends every message on a pool of threads that wake each other. As ordinary threads they also push each other, and
/// whoever sends, off the processor each time, which in dense traffic costs a quarter of a message. Batch threads wait
/// until the processor is free. A thread takes its class from the one that starts it.
bool startAsBatchThreads()
{
    const sched_param none{};
    const int usual = sched_getscheduler(0);
    const bool changed = usual == SCHED_OTHER && sched_setscheduler(0, SCHED_BATCH, &none) == 0;
    nng_aio *first = nullptr; // whatever the library is asked for first starts it
    if (nng_aio_alloc(&first, nullptr, nullptr) == 0)
        nng_aio_free(first);
    if (changed)
        sched_setscheduler(0, usual, &none);
    return changed;
}

} // namespace

void startMessageThreads()
{
    static const bool started = startAsBatchThreads();
    (void)started;
}

} // namespace tarvo::simulator::xplane
