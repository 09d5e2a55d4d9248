#pragma once

#include "voice/codec/AudioStreamConfig.h"
#include "voice/codec/OpusEncoder.h"

#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace tarvo::test {

/// 20 ms of a sine of 400 Hz.
inline std::vector<std::uint8_t> loudPacket()
{
    voice::OpusEncoder encoder(voice::AudioStreamConfig{});
    std::vector<std::int16_t> pcm(960);
    for (std::size_t i = 0; i < pcm.size(); ++i)
        pcm[i] =
            static_cast<std::int16_t>(16000 * std::sin(2 * std::numbers::pi * 400 * static_cast<double>(i) / 48000));
    return encoder.encode(pcm.data(), 960);
}

} // namespace tarvo::test
