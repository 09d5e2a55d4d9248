#include "support/ThreadTime.h"

#include <ctime>

namespace tarvo::test {

namespace {

double readMs(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

} // namespace

ThreadTime ThreadTime::now()
{
    return {readMs(CLOCK_MONOTONIC), readMs(CLOCK_THREAD_CPUTIME_ID)};
}

} // namespace tarvo::test
