#include "simulator/xplane/MessagePool.h"

#include <nng/nng.h>

namespace tarvo::simulator::xplane {

void limitMessagePool()
{
    // As many as nng itself makes on a machine with one processor. More only wake each other in dense traffic.
    constexpr int threads = 2;
    nng_init_set_parameter(NNG_INIT_NUM_TASK_THREADS, threads);
}

} // namespace tarvo::simulator::xplane
