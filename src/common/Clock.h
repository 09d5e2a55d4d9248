#pragma once

#include <QtGlobal>

namespace tarvo::common {

/// The time, as a seam: the program uses systemClock(), a test one that it moves by hand.
class Clock
{
public:
    Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;
    virtual ~Clock() = default;

    /// Milliseconds since the Unix epoch, UTC. May jump when the user sets the clock.
    virtual qint64 wallMs() const = 0;
    /// Milliseconds since some fixed point. Never jumps.
    virtual qint64 steadyMs() const = 0;
};

/// The machine's clock. Lives as long as the process.
const Clock &systemClock();

} // namespace tarvo::common
