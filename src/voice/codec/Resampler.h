#pragma once

#include <span>
#include <vector>

namespace tarvo::voice {

/// The same sound at another rate, as one channel: interleaved stereo is taken as one stream. Rates in Hz. Empty for
/// nothing, and when soxr refuses, as the log then tells. Each call begins and ends for itself.
std::vector<float> resampleFloat(std::span<const float> samples, int fromRate, int toRate);

} // namespace tarvo::voice
