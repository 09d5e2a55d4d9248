#include "voice/engine/Samples.h"

#include "voice/codec/CodecFormat.h"

#include <algorithm>
#include <cmath>

namespace tarvo::voice {

using common::VolumeInfo;

namespace {

constexpr float silence = -96; // dB; the quietest that 16 bits can tell

/// `sumOfSquares`: of `count` samples between -1 and 1.
VolumeInfo levelOfSquares(double sumOfSquares, std::size_t count)
{
    const double rms = count > 0 ? std::sqrt(sumOfSquares / static_cast<double>(count)) : 0;
    const float db = rms > 0 ? std::clamp(static_cast<float>(20 * std::log10(rms)), silence, 0.0F) : silence;
    return {db, static_cast<int>((db - silence) / -silence * 100)};
}

std::int16_t clipped(float sample)
{
    return static_cast<std::int16_t>(std::clamp(sample, -32768.0F, 32767.0F));
}

} // namespace

VolumeInfo levelOf(std::span<const std::int16_t> samples)
{
    double sum = 0;
    for (const std::int16_t sample : samples) {
        const double x = sample / 32768.0;
        sum += x * x;
    }
    return levelOfSquares(sum, samples.size());
}

VolumeInfo levelOf(std::span<const float> samples)
{
    double sum = 0;
    for (const double x : samples)
        sum += x * x;
    return levelOfSquares(sum, samples.size());
}

float gainFactor(int db)
{
    return std::pow(10.0F, static_cast<float>(db) / 20);
}

void amplify(std::span<const std::int16_t> from, float gain, std::span<std::int16_t> to)
{
    std::transform(from.begin(), from.end(), to.begin(),
                   [gain](std::int16_t sample) { return clipped(static_cast<float>(sample) * gain); });
}

void toFloat(std::span<const std::int16_t> from, std::span<float> to)
{
    std::transform(from.begin(), from.end(), to.begin(),
                   [](std::int16_t sample) { return static_cast<float>(sample) * int16ToFloat; });
}

void toInt16(std::span<const float> from, std::span<std::int16_t> to)
{
    const std::span<const float> fitting = from.first(std::min(from.size(), to.size()));
    const auto end = std::transform(fitting.begin(), fitting.end(), to.begin(),
                                    [](float sample) { return clipped(sample * 32767); });
    std::fill(end, to.end(), std::int16_t{0});
}

void setVolume(std::span<float> samples, float volume)
{
    for (float &sample : samples)
        sample = std::clamp(sample * volume, -1.0F, 1.0F);
}

} // namespace tarvo::voice
