#include "voice/transport/Identity.h"

#include "voice/wire/VoicePacket.h"

namespace tarvo::voice {

void Identity::setCid(quint32 cid)
{
    const std::lock_guard lock(m_mutex);
    m_cid = cid;
}

void Identity::setCallsign(const std::string &callsign)
{
    const std::lock_guard lock(m_mutex);
    m_callsign = fittingCallsign(callsign);
}

ControlMessage Identity::ping(qint64 secondsSinceEpoch) const
{
    const std::lock_guard lock(m_mutex);
    return {.type = ControlMessageType::Ping,
            .cid = static_cast<qint32>(m_cid),
            .callsign = m_callsign,
            .transmitter = 0,
            .data = std::to_string(secondsSinceEpoch)};
}

ControlMessage Identity::disconnect() const
{
    const std::lock_guard lock(m_mutex);
    return {.type = ControlMessageType::Disconnect,
            .cid = static_cast<qint32>(m_cid),
            .callsign = {}, // the server knows
            .transmitter = 0,
            .data = {}};
}

std::vector<std::uint8_t> Identity::keepAlivePacket() const
{
    const std::lock_guard lock(m_mutex);
    return serializeVoicePacket(m_cid, 0, 0, m_callsign, {});
}

} // namespace tarvo::voice
