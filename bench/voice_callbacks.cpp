// What the two audio callbacks take of the 20 ms that a buffer lasts, in percent. The output callback is to mix 8
// speakers for less than 1 %. The "s" that is printed behind the figure means nothing.
#include "voice/codec/AudioStreamConfig.h"
#include "voice/engine/OutputMixer.h"
#include "voice/engine/VoiceCapture.h"

#include <benchmark/benchmark.h>

#include <cmath>

using namespace tarvo::voice;

namespace {

AudioStreamConfig configOf(const benchmark::State &state)
{
    const auto rate = static_cast<int>(state.range(0));
    const auto channels = static_cast<int>(state.range(1));
    return {.sampleRate = rate, .channels = channels, .framesPerBuffer = rate / 50 * channels, .device = {}};
}

void tellShare(benchmark::State &state)
{
    constexpr double percentOfBuffer = 0.020 / 100;
    state.counters["% of 20 ms"] = benchmark::Counter(percentOfBuffer * static_cast<double>(state.iterations()),
                                                      benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void outputCallback(benchmark::State &state)
{
    constexpr int speakers = 8;
    constexpr int queued = 32;
    OutputMixer mixer(static_cast<std::size_t>(configOf(state).framesPerBuffer));
    std::vector<float> out(static_cast<std::size_t>(configOf(state).framesPerBuffer));
    std::vector<float> voice(out.size() * queued);
    for (std::size_t i = 0; i < voice.size(); ++i)
        voice[i] = 0.4F * std::sin(static_cast<float>(i) / 20);
    for (int id = 0; id < speakers; ++id)
        mixer.addChannel(id);
    int left = 0;
    for (auto _ : state) {
        if (left-- == 0) {
            state.PauseTiming();
            for (int id = 0; id < speakers; ++id)
                mixer.pushVoice(id, voice);
            left = queued - 1;
            state.ResumeTiming();
        }
        mixer.mix(out);
        benchmark::DoNotOptimize(out.data());
    }
    tellShare(state);
}

void captureCallback(benchmark::State &state)
{
    const AudioStreamConfig config = configOf(state);
    const auto controls = std::make_shared<CaptureControls>();
    controls->transmitEnabled = state.range(2) != 0;
    VoiceCapture capture(config, controls);
    std::vector<std::int16_t> buffer(static_cast<std::size_t>(config.framesPerBuffer));
    for (std::size_t i = 0; i < buffer.size(); ++i)
        buffer[i] = static_cast<std::int16_t>(8000 * std::sin(static_cast<double>(i) / 20));
    for (auto _ : state)
        benchmark::DoNotOptimize(capture.process(buffer));
    tellShare(state);
}

} // namespace

BENCHMARK(outputCallback)->ArgNames({"Hz", "channels"})->ArgsProduct({{44100, 48000}, {1, 2}});
BENCHMARK(captureCallback)->ArgNames({"Hz", "channels", "key"})->ArgsProduct({{44100, 48000}, {1, 2}, {0, 1}});

BENCHMARK_MAIN();
