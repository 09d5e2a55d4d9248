#include "simulator/xplane/MessagePool.h"
#include "traffic/Scheduling.h"

namespace tarvo::bench {

void startOrdinaryMessageThreads()
{
    simulator::xplane::limitMessagePool();
}

} // namespace tarvo::bench
