#include "voice/engine/RetryPace.h"

#include <algorithm>

namespace tarvo::voice {

namespace {

constexpr std::chrono::seconds first{1};
constexpr std::chrono::seconds longest{30};

} // namespace

std::optional<std::chrono::milliseconds> RetryPace::next(bool besideOthers)
{
    if (besideOthers && m_attempts > 0)
        return std::nullopt;
    const auto pause = std::min(first * (1 << std::min(m_attempts, 5)), longest);
    ++m_attempts;
    return pause;
}

} // namespace tarvo::voice
