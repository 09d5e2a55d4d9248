#pragma once

namespace tarvo::voice {

constexpr float conflictFrequency = 293.66F; ///< Hz, a D
constexpr float toneAmplitude = 0.3F;        ///< of every tone
constexpr int usualToneRate = 44100;         ///< Hz, of a tone whose device isn't known

} // namespace tarvo::voice
