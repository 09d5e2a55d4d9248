// Any bytes as a datagram of the voice server.
#include "voice/wire/VoicePacket.h"

using namespace tarvo::voice;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const std::optional<VoicePacket> packet = parseVoicePacket(data, size);
    if (!packet || packet->callsign.size() == 255 || packet->frequency >= 200000 || packet->transmitter == 255)
        return 0; // no packet, or one that can't be written
    const auto written = serializeVoicePacket(packet->cid, static_cast<int>(packet->transmitter), packet->frequency,
                                              packet->callsign, packet->payload);
    if (written != std::vector<std::uint8_t>(data, data + size))
        __builtin_trap(); // what can be read is written with the same bytes
    return 0;
}
