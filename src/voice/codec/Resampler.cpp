#include "voice/codec/Resampler.h"

#include <QDebug>

#include <soxr.h>

namespace tarvo::voice {

std::vector<float> resampleFloat(std::span<const float> samples, int fromRate, int toRate)
{
    if (samples.empty() || fromRate <= 0 || toRate <= 0)
        return {};
    if (fromRate == toRate)
        return {samples.begin(), samples.end()};
    // size_t, so that no product of samples and rate is too large for it.
    std::vector<float> resampled(
        samples.size() * static_cast<std::size_t>(toRate) / static_cast<std::size_t>(fromRate) + 1);
    std::size_t made = 0;
    const soxr_error_t error = soxr_oneshot(fromRate, toRate, 1, samples.data(), samples.size(), nullptr,
                                            resampled.data(), resampled.size(), &made, nullptr, nullptr, nullptr);
    if (error) {
        qWarning() << "resampleFloat: soxr error:" << error;
        return {};
    }
    resampled.resize(made);
    return resampled;
}

} // namespace tarvo::voice
