#include "practice/voice/PilotCalls.h"

#include <algorithm>

namespace tarvo::practice {

bool PilotCalls::hear(const QString &callsign, const voice::VoicePacket &packet, qint64 now)
{
    const auto same = std::find_if(m_calls.begin(), m_calls.end(), [&](const PilotCall &call) {
        return call.callsign == callsign && call.frequency == packet.frequency;
    });
    const bool isFirst = same == m_calls.end();
    PilotCall &call = isFirst ? m_calls.emplaceBack(PilotCall{callsign, packet.frequency, now, {}}) : *same;
    call.lastMs = now;
    if (call.frames.size() < mostFrames)
        call.frames.push_back(packet.payload);
    return isFirst;
}

QList<PilotCall> PilotCalls::takeEnded(int frequency, int silenceMs, qint64 now)
{
    QList<PilotCall> ended;
    m_calls.removeIf([&](const PilotCall &call) {
        const bool isEnded = call.frequency == frequency && now - call.lastMs >= silenceMs;
        if (isEnded)
            ended.append(call);
        return isEnded;
    });
    return ended;
}

bool PilotCalls::isFree(int frequency, qint64 now) const
{
    return std::none_of(m_calls.begin(), m_calls.end(), [&](const PilotCall &call) {
        return call.frequency == frequency && now - call.lastMs < pauseMs;
    });
}

} // namespace tarvo::practice
