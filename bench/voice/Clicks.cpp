#include "voice/Clicks.h"

#include "support/SoundServer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace tarvo::bench {

namespace {

/// Seconds of delay that a minute adds, by least squares.
double slopePerMinute(const std::vector<Delay> &all)
{
    double x = 0;
    double y = 0;
    double xx = 0;
    double xy = 0;
    for (const Delay &one : all) {
        x += one.said;
        y += one.delay;
        xx += one.said * one.said;
        xy += one.said * one.delay;
    }
    const auto n = static_cast<double>(all.size());
    const double spread = n * xx - x * x;
    return spread > 0 ? 60 * (n * xy - x * y) / spread : 0;
}

} // namespace

std::vector<float> clicks(double seconds)
{
    constexpr double period = 1.0137; // seconds
    std::vector<float> samples(static_cast<std::size_t>(seconds * test::soundRate));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double time = std::fmod(static_cast<double>(i) / test::soundRate, period) - 0.5;
        if (time >= 0 && time < 0.010)
            samples[i] = 0.5F * static_cast<float>(std::sin(2 * std::numbers::pi * 1000 * time));
    }
    return samples;
}

std::vector<double> clickTimes(test::SoundRecorder &recorder)
{
    std::vector<double> times;
    const std::vector<float> &samples = recorder.samples();
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (std::abs(samples[i]) < 0.1F)
            continue;
        times.push_back(recorder.timeOf(i));
        i += test::soundRate / 2;
    }
    return times;
}

std::vector<Delay> delays(const std::vector<double> &said, const std::vector<double> &heard)
{
    std::vector<Delay> found;
    for (const double time : said) {
        const auto next = std::lower_bound(heard.begin(), heard.end(), time);
        if (next != heard.end() && *next - time < 0.9)
            found.push_back({time - said.front(), *next - time});
    }
    return found;
}

DelayFigures figuresOf(const std::vector<Delay> &all)
{
    std::vector<double> sorted;
    sorted.reserve(all.size());
    for (const Delay &one : all)
        sorted.push_back(one.delay * 1000);
    std::sort(sorted.begin(), sorted.end());
    return {sorted.front(), sorted[sorted.size() / 2], sorted[(sorted.size() - 1) * 99 / 100],
            slopePerMinute(all) * 1000};
}

} // namespace tarvo::bench
