#pragma once

#include <vector>

namespace tarvo::test {
class SoundRecorder;
}

namespace tarvo::bench {

/// What mouth to ear may take beyond the devices' buffers: a frame of 20 ms, and 25 ms.
inline constexpr double delayAllowanceMs = 20 + 25;

/// Ten ms of 1000 Hz every now and then in silence, at another place of the devices' buffers each time.
std::vector<float> clicks(double seconds);

/// When each click in what was recorded begins, in seconds of the steady clock. A click is followed by half a second
/// without one.
std::vector<double> clickTimes(test::SoundRecorder &recorder);

struct Delay
{
    double said;  ///< seconds from the first click
    double delay; ///< seconds
};

/// For each click that was said the time until it was heard; those that weren't within 0.9 s are left out.
std::vector<Delay> delays(const std::vector<double> &said, const std::vector<double> &heard);

/// In ms.
struct DelayFigures
{
    double least = 0;
    double median = 0;
    double most99 = 0;         ///< 99 % are at most so
    double slopePerMinute = 0; ///< what a minute adds, by least squares
};

/// Of one delay at least.
DelayFigures figuresOf(const std::vector<Delay> &all);

} // namespace tarvo::bench
