#include "voice/sound/Hearing.h"

#include "support/Patience.h"
#include "support/SoundServer.h"
#include "voice/codec/AudioStreamConfig.h"
#include "voice/codec/CodecFormat.h"
#include "voice/codec/OpusEncoder.h"
#include "voice/engine/Samples.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <utility>

namespace tarvo::test {

namespace {

constexpr std::size_t window = soundRate / 50;
constexpr std::size_t thinning = 6; // to 8000 Hz, for which voice is made

/// Every sixth sample, each the mean of its surroundings.
std::vector<float> thinned(std::span<const float> samples)
{
    std::vector<float> result;
    for (std::size_t i = 0; i + thinning <= samples.size(); i += thinning) {
        float sum = 0;
        for (const float sample : samples.subspan(i, thinning))
            sum += sample;
        result.push_back(sum / thinning);
    }
    return result;
}

double product(std::span<const float> a, std::span<const float> b)
{
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += static_cast<double>(a[i]) * b[i];
    return sum;
}

double correlation(std::span<const float> a, std::span<const float> b)
{
    const double size = std::sqrt(product(a, a) * product(b, b));
    return size > 0 ? product(a, b) / size : 0;
}

} // namespace

/// Goertzel's way.
double toneIn(std::span<const float> samples, double hz)
{
    const double step = 2 * std::numbers::pi * hz / soundRate;
    double last = 0;
    double before = 0;
    for (const float sample : samples)
        before = std::exchange(last, sample + 2 * std::cos(step) * last - before);
    const double size = std::abs(std::complex(last - before * std::cos(step), before * std::sin(step)));
    return samples.empty() ? 0 : 2 * size / static_cast<double>(samples.size());
}

double loudestTone(std::span<const float> samples, double hz)
{
    double most = 0;
    for (std::size_t i = 0; i + window <= samples.size(); i += window / 4)
        most = std::max(most, toneIn(samples.subspan(i, window), hz));
    return most;
}

bool hears(SoundRecorder &recorder, double hz, double peak)
{
    std::size_t seen = 0;
    return waitFor([&] {
        const std::span<const float> all = recorder.samples();
        if (all.size() < seen + 2 * window)
            return false;
        const std::span<const float> unseen = all.subspan(seen);
        seen = all.size() - window;
        return loudestTone(unseen, hz) > peak;
    });
}

std::vector<float> chirp(double seconds)
{
    std::vector<float> samples(static_cast<std::size_t>(seconds * soundRate));
    double phase = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double time = static_cast<double>(i) / soundRate;
        phase += 2 * std::numbers::pi * (300 + 2700 * time / seconds) / soundRate;
        const double syllable = std::abs(std::sin(2 * std::numbers::pi * 2 * time));
        samples[i] = static_cast<float>(0.5 * syllable * std::sin(phase));
    }
    return samples;
}

std::vector<float> sine(double hz, double seconds, float peak)
{
    std::vector<float> samples(static_cast<std::size_t>(seconds * soundRate));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] =
            peak * static_cast<float>(std::sin(2 * std::numbers::pi * hz * static_cast<double>(i) / soundRate));
    return samples;
}

std::vector<std::vector<std::uint8_t>> packetsOf(const std::vector<float> &samples)
{
    using namespace voice;
    voice::OpusEncoder encoder(AudioStreamConfig{}); // libopus has one of that name
    std::vector<std::vector<std::uint8_t>> packets;
    std::vector<std::int16_t> frame(codecFrameSize);
    for (std::size_t i = 0; i + frame.size() <= samples.size(); i += frame.size()) {
        toInt16(std::span(samples).subspan(i, frame.size()), frame);
        packets.push_back(encoder.encode(frame.data(), codecFrameSize));
    }
    return packets;
}

std::vector<double> likeness(std::span<const float> said, std::span<const float> heard)
{
    constexpr std::size_t piece = soundRate / 4 / thinning;
    const std::vector<float> a = thinned(said);
    const std::vector<float> b = thinned(heard);
    std::vector<double> result;
    for (std::size_t start = 0; start + piece <= a.size(); start += piece) {
        double best = 0;
        for (std::size_t at = 0; at + piece <= b.size(); ++at)
            best = std::max(best, correlation(std::span(a).subspan(start, piece), std::span(b).subspan(at, piece)));
        result.push_back(best);
    }
    std::sort(result.begin(), result.end());
    return result;
}

} // namespace tarvo::test
