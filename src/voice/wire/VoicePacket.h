#pragma once

#include <QtGlobal>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarvo::voice {

/// One datagram: a frame of somebody's voice, or a keep-alive.
/// Wire, little-endian: cid 4, transmitter 1, frequency 4, L 1, callsign L, payload, 0x0A
struct VoicePacket
{
    quint32 cid = 0;                   ///< the sender's numeric user id
    quint32 transmitter = 0;           ///< the sender's; 0 to 255
    qint32 frequency = 0;              ///< kHz, such as 118700
    std::string callsign;              ///< the sender's, raw bytes
    std::vector<std::uint8_t> payload; ///< one Opus frame of 20 ms; empty in a keep-alive

    bool operator==(const VoicePacket &) const = default;
};

/// The callsign as far as a packet has room for it: at most 254 bytes, cut between two UTF-8 characters.
std::string fittingCallsign(std::string callsign);

/// Throws std::invalid_argument, in this order: "Callsign too long" from 255 bytes, "Frequency too large" from
/// 200,000 kHz, "Transmitter ID too large" from 255. Negative numbers pass and are cut to their size.
std::vector<std::uint8_t> serializeVoicePacket(quint32 cid, int transmitter, int frequency, const std::string &callsign,
                                               const std::vector<std::uint8_t> &payload);

/// Nothing when the bytes are no packet. Reads numbers and callsign as they stand.
std::optional<VoicePacket> parseVoicePacket(const std::uint8_t *bytes, std::size_t size);

} // namespace tarvo::voice
