#pragma once

#include "common/VolumeInfo.h"

#include <cstdint>
#include <span>

namespace tarvo::voice {

// What is done to the samples of one buffer. Nothing here allocates.

/// The level of all samples together; -96 dB for none.
common::VolumeInfo levelOf(std::span<const std::int16_t> samples);
common::VolumeInfo levelOf(std::span<const float> samples);

/// The factor of a gain in dB.
float gainFactor(int db);

/// `to[i]` is `from[i]` times `gain`, clipped and cut to 16 bits. Both have the same size.
void amplify(std::span<const std::int16_t> from, float gain, std::span<std::int16_t> to);

/// Both have the same size.
void toFloat(std::span<const std::int16_t> from, std::span<float> to);

/// Clipped and cut to 16 bits. What `from` lacks is silence; what it has too much is left out.
void toInt16(std::span<const float> from, std::span<std::int16_t> to);

/// Multiplies with `volume` and clips to -1 to 1.
void setVolume(std::span<float> samples, float volume);

} // namespace tarvo::voice
