#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tarvo::test {

class SoundRecorder;

/// The peak of what `samples` have of a sine of `hz`.
double toneIn(std::span<const float> samples, double hz);
/// The most that any 20 ms have of it.
double loudestTone(std::span<const float> samples, double hz);

/// Waits until 20 ms of what is recorded have more of it than `peak`; false when that lasts too long.
bool hears(SoundRecorder &recorder, double hz, double peak);

/// `seconds` of a sweep from 300 to 3000 Hz in syllables, with a peak of 0.5.
std::vector<float> chirp(double seconds);
std::vector<float> sine(double hz, double seconds, float peak);

/// The packets of a sound.
std::vector<std::vector<std::uint8_t>> packetsOf(const std::vector<float> &samples);

/// How like `heard` is to each quarter of a second of `said`, at the best place in it, sorted: correlations up to 1.
/// One piece may suffer where sound came a moment too late to be played without a gap.
std::vector<double> likeness(std::span<const float> said, std::span<const float> heard);

} // namespace tarvo::test
