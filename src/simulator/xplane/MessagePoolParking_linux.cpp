#include "simulator/xplane/MessagePool.h"

#include <nng/nng.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include <sched.h>
#include <unistd.h>

// For nng below 1.7, which can't be asked for a number of threads.
//
// nng ends every message on a pool of threads, twice as many as the machine has processors. Each that ends a message
// wakes another for the next one and goes on to take that one itself, so that the other was woken for nothing: in dense
// traffic this is most of what a message costs. What is done about it here, each by itself, saves a fifth of a client's
// load with 500 aircraft around it, and more where there are more processors.

namespace tarvo::simulator::xplane {

namespace {

/// What nng itself makes of a machine with one processor.
constexpr int workingThreads = 2;

/// By then every thread of the pool has given itself its name.
constexpr nng_duration namedAfterMs = 100;

/// Threads of the pool, told by their name; 0 where they can't be told.
int countPoolThreads()
{
    int count = 0;
    std::error_code error; // nothing may be thrown here: a thread of nng's would end the program
    for (std::filesystem::directory_iterator thread("/proc/self/task", error), end; thread != end;
         thread.increment(error)) {
        std::string name;
        std::getline(std::ifstream(thread->path() / "comm"), name);
        if (name == "nng:task")
            ++count;
    }
    return count;
}

/// Keeps the pool's thread that runs it, for good.
void park(void *)
{
    for (;;)
        pause();
}

/// Runs on a thread of the pool, and parks all but the working ones.
void parkSurplus(void *)
{
    const int surplus = countPoolThreads() - workingThreads;
    for (int i = 1; i < surplus; ++i) {
        nng_aio *parked = nullptr; // never freed: it never ends
        if (nng_aio_alloc(&parked, park, nullptr) == 0)
            nng_sleep_aio(0, parked);
    }
    if (surplus > 0)
        park(nullptr);
}

/// As ordinary threads the pool's also push each other, and whoever sends, off the processor each time. Batch threads
/// wait until it is free. A thread takes its class from the one that starts it.
bool start()
{
    const sched_param none{};
    const int usual = sched_getscheduler(0);
    const bool changed = usual == SCHED_OTHER && sched_setscheduler(0, SCHED_BATCH, &none) == 0;
    nng_aio *first = nullptr; // whatever nng is asked for first starts it
    if (nng_aio_alloc(&first, parkSurplus, nullptr) == 0)
        nng_sleep_aio(namedAfterMs, first);
    if (changed)
        sched_setscheduler(0, usual, &none);
    return true;
}

} // namespace

void limitMessagePool()
{
    static const bool started = start();
    (void)started;
}

} // namespace tarvo::simulator::xplane
