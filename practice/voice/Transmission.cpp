#include "practice/voice/Transmission.h"

namespace tarvo::practice {

Transmission::Transmission(std::string callsign, int frequency, Speech speech, qint64 startMs)
    : m_callsign(std::move(callsign)), m_frequency(frequency), m_speech(std::move(speech)), m_nextMs(startMs)
{
}

void Transmission::loop(std::size_t firstFrame)
{
    m_loops = true;
    m_next = m_speech->empty() ? 0 : firstFrame % m_speech->size();
}

std::optional<voice::VoicePacket> Transmission::takeDue(qint64 now)
{
    if (isOver() || now < m_nextMs)
        return std::nullopt;
    if (now - m_nextMs > latestMs)
        m_nextMs = now;
    voice::VoicePacket packet{
        .cid = 0, .transmitter = 0, .frequency = m_frequency, .callsign = m_callsign, .payload = (*m_speech)[m_next]};
    m_nextMs += frameMs;
    ++m_next;
    if (m_loops)
        m_next %= m_speech->size();
    return packet;
}

} // namespace tarvo::practice
