#include "voice/client/Speakers.h"

namespace tarvo::voice {

namespace {

constexpr qint64 holdMs = 100;

/// More than a network's frequencies in use. A server can name any number of them.
constexpr std::size_t mostFrequencies = 4096;

} // namespace

bool Speakers::take(qint32 frequency, const std::string &callsign, qint64 nowMs)
{
    const auto found = m_last.find(frequency);
    if (found != m_last.end()) {
        if (nowMs - found->second.lastMs < holdMs && found->second.callsign != callsign)
            return false;
        found->second = {callsign, nowMs};
        return true;
    }
    // All that is forgotten then is who holds a frequency for the next 100 ms.
    if (m_last.size() == mostFrequencies)
        m_last.clear();
    m_last.emplace(frequency, Speaker{callsign, nowMs});
    return true;
}

} // namespace tarvo::voice
