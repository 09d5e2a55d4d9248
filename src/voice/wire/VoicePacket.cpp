#include "voice/wire/VoicePacket.h"

#include <QtEndian>

#include <stdexcept>

namespace tarvo::voice {

namespace {

constexpr std::size_t headSize = 10;
constexpr std::size_t longestCallsign = 254;
constexpr std::uint8_t terminator = 0x0A; // once the end of a line; readers still insist on it

// Where the fields of the head stand.
constexpr std::size_t transmitterAt = 4;
constexpr std::size_t frequencyAt = 5;
constexpr std::size_t callsignSizeAt = 9;

void checkLimits(int transmitter, int frequency, const std::string &callsign)
{
    if (callsign.size() > longestCallsign)
        throw std::invalid_argument("Callsign too long");
    if (frequency >= 200000)
        throw std::invalid_argument("Frequency too large");
    if (transmitter >= 255)
        throw std::invalid_argument("Transmitter ID too large");
}

} // namespace

std::string fittingCallsign(std::string callsign)
{
    if (callsign.size() <= longestCallsign)
        return callsign;
    const auto isInsideOfCharacter = [&callsign](std::size_t at) { return (callsign[at] & 0xC0) == 0x80; };
    std::size_t end = longestCallsign;
    while (end > longestCallsign - 3 && isInsideOfCharacter(end))
        --end;
    callsign.resize(end);
    return callsign;
}

std::vector<std::uint8_t> serializeVoicePacket(quint32 cid, int transmitter, int frequency, const std::string &callsign,
                                               const std::vector<std::uint8_t> &payload)
{
    checkLimits(transmitter, frequency, callsign);
    std::vector<std::uint8_t> bytes;
    bytes.reserve(headSize + callsign.size() + payload.size() + 1);
    bytes.resize(headSize);
    qToLittleEndian(cid, bytes.data());
    bytes[transmitterAt] = static_cast<std::uint8_t>(transmitter);
    qToLittleEndian(frequency, &bytes[frequencyAt]);
    bytes[callsignSizeAt] = static_cast<std::uint8_t>(callsign.size());
    bytes.insert(bytes.end(), callsign.begin(), callsign.end());
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    bytes.push_back(terminator);
    return bytes;
}

std::optional<VoicePacket> parseVoicePacket(const std::uint8_t *bytes, std::size_t size)
{
    if (size <= headSize || bytes[size - 1] != terminator)
        return std::nullopt;
    const std::uint8_t *callsign = bytes + headSize;
    const std::uint8_t *end = bytes + size - 1;
    const std::size_t callsignSize = bytes[callsignSizeAt];
    if (callsignSize > static_cast<std::size_t>(end - callsign))
        return std::nullopt;
    const std::uint8_t *payload = callsign + callsignSize;
    return VoicePacket{.cid = qFromLittleEndian<quint32>(bytes),
                       .transmitter = bytes[transmitterAt],
                       .frequency = qFromLittleEndian<qint32>(bytes + frequencyAt),
                       .callsign = std::string(callsign, payload),
                       .payload = std::vector(payload, end)};
}

} // namespace tarvo::voice
