#include "simulator/xplane/MessagePool.h"
#include "traffic/Scheduling.h"

#include <filesystem>
#include <string>
#include <system_error>

#include <sched.h>

namespace tarvo::bench {

void startOrdinaryMessageThreads()
{
    simulator::xplane::limitMessagePool();
    const sched_param none{};
    std::error_code error; // a system without /proc has no batch scheduling, either
    for (std::filesystem::directory_iterator thread("/proc/self/task", error), end; thread != end;
         thread.increment(error))
        sched_setscheduler(std::stoi(thread->path().filename().string()), SCHED_OTHER, &none);
}

} // namespace tarvo::bench
