#pragma once

#include "voice/wire/ControlMessage.h"

#include <QtGlobal>

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace tarvo::voice {

/// Who the pilot is to the voice server, and what is said in his name without his doing. Any thread.
class Identity
{
public:
    void setCid(quint32 cid);
    void setCallsign(const std::string &callsign);

    /// `secondsSinceEpoch`: the present.
    ControlMessage ping(qint64 secondsSinceEpoch) const;
    ControlMessage disconnect() const;
    /// The datagram that tells the server where this pilot's voice comes from.
    std::vector<std::uint8_t> keepAlivePacket() const;

private:
    mutable std::mutex m_mutex;
    quint32 m_cid = 0;
    std::string m_callsign; ///< as far as a datagram has room for it
};

} // namespace tarvo::voice
