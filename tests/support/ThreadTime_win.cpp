#include "support/ThreadTime.h"

#include <chrono>

namespace tarvo::test {

/// Windows counts a thread's processor time in steps of 15 ms: the time that passes stands for it.
ThreadTime ThreadTime::now()
{
    const double ms =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
    return {ms, ms};
}

} // namespace tarvo::test
