#pragma once

#include "practice/voice/Speech.h"
#include "voice/wire/VoicePacket.h"

#include <QtGlobal>

#include <optional>
#include <string>

namespace tarvo::practice {

/// Somebody who says something on a frequency, a frame each 20 ms.
class Transmission
{
public:
    static constexpr int frameMs = 20;
    static constexpr int latestMs = 200; ///< frames that are later than this are all moved on, so that none are rushed

    /// `startMs`: steady time of the first frame.
    Transmission(std::string callsign, int frequency, Speech speech, qint64 startMs);

    /// Over and over again, from the frame of that number on.
    void loop(std::size_t firstFrame);
    /// The next frame that is due by `now`.
    std::optional<voice::VoicePacket> takeDue(qint64 now);
    bool isOver() const { return m_next >= m_speech->size(); }
    const std::string &callsign() const { return m_callsign; }
    int frequency() const { return m_frequency; }

private:
    std::string m_callsign;
    int m_frequency;
    Speech m_speech;
    std::size_t m_next = 0; ///< number of the next frame
    qint64 m_nextMs;
    bool m_loops = false;
};

} // namespace tarvo::practice
