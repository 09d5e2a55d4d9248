#pragma once

#include <chrono>
#include <optional>

namespace tarvo::voice {

/// How often streams that don't run, and should, are opened again: after 1, 2, 4 ... 30 s while none runs, as when the
/// sound server is gone. Beside one that runs only once, because that interrupts it.
class RetryPace
{
public:
    /// The pause before the next attempt; nothing when there is to be none.
    std::optional<std::chrono::milliseconds> next(bool besideOthers);
    /// All has been well for a while, or the pilot has done something.
    void reset() { m_attempts = 0; }

private:
    int m_attempts = 0;
};

} // namespace tarvo::voice
