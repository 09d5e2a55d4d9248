#pragma once

#include "practice/voice/Speech.h"
#include "voice/wire/VoicePacket.h"

#include <QList>
#include <QString>

namespace tarvo::practice {

/// What a pilot said on a frequency until he let go of the key.
struct PilotCall
{
    QString callsign;
    int frequency = 0;   ///< kHz
    qint64 lastMs = 0;   ///< steady time of the last frame
    SpeechFrames frames; ///< the first half minute
};

/// The calls that pilots make. A pilot has let go when nothing came from him for a while.
class PilotCalls
{
public:
    static constexpr std::size_t mostFrames = 1'500; ///< of one call; the rest isn't kept
    static constexpr int pauseMs = 200;              ///< without voice for so long a frequency is free again

    /// True for the first frame of a call. `now` is steady time, ms.
    bool hear(const QString &callsign, const voice::VoicePacket &packet, qint64 now);
    /// The calls on that frequency that ended `silenceMs` ago or earlier, and were not taken yet. A pause that is
    /// shorter is left out of a call.
    QList<PilotCall> takeEnded(int frequency, int silenceMs, qint64 now);
    /// True when nobody speaks on that frequency.
    bool isFree(int frequency, qint64 now) const;

private:
    QList<PilotCall> m_calls;
};

} // namespace tarvo::practice
