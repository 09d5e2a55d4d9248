#include "voice/engine/SoundStream.h"

#include "voice/codec/AudioStreamConfig.h"
#include "voice/engine/AudioPriority.h"

#include <QDebug>

#include <portaudio.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>
#include <utility>

namespace tarvo::voice {

namespace {

using Clock = std::chrono::steady_clock;

// A stream that lives wants a buffer every 20 ms. One that doesn't can't be stopped: a sound server that is stopped
// keeps whoever tries waiting, and PortAudio 19.6 may overlook the end of a stream that ends together with another,
// whose thread then goes round for good.
constexpr std::chrono::milliseconds longestGap{1000};
constexpr std::chrono::milliseconds longestWait{300};

} // namespace

/// What PortAudio's threads use of a stream.
struct SoundStream::Calls
{
    const char *name; ///< for the log
    Capture capture;  ///< of an input
    Play play;        ///< of an output
    std::size_t channels = 1;

    PaStream *stream = nullptr;        ///< null once it is closed
    std::atomic<bool> isWanted = true; ///< false when its end is our doing
    std::atomic<const char *> priority = nullptr;
    std::atomic<Clock::time_point> lastBuffer = Clock::time_point();
    std::atomic<int> buffers = 0;
    std::atomic<int> lost = 0; ///< how often the device had to wait for us, or we lost what it had

    Calls *next = nullptr; ///< of those left behind

    static int onBuffer(const void *input, void *output, unsigned long frames, const PaStreamCallbackTimeInfo *,
                        PaStreamCallbackFlags flags, void *calls)
    {
        auto &self = *static_cast<Calls *>(calls);
        if (!self.isWanted)
            return paAbort; // one that was left behind
        self.handle(input, output, frames, flags);
        return paContinue;
    }

    static void onEnd(void *calls)
    {
        const auto &self = *static_cast<Calls *>(calls);
        if (self.isWanted)
            qWarning().nospace() << self.name << ": the sound system has ended the stream";
    }

    void handle(const void *input, void *output, unsigned long frames, PaStreamCallbackFlags flags)
    {
        if (!priority)
            priority = raiseAudioPriority();
        lastBuffer = Clock::now();
        ++buffers;
        if (flags & (paInputOverflow | paOutputUnderflow))
            ++lost;
        const std::size_t samples = frames * channels;
        if (play && output)
            play({static_cast<float *>(output), samples});
        if (capture && input)
            capture({static_cast<const std::int16_t *>(input), samples});
    }

    /// Waits for the next buffer; false when it doesn't come.
    bool lives() const
    {
        const int before = buffers;
        for (int i = 0; i < longestWait.count() && buffers == before; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return buffers != before;
    }

    bool isInput() const { return capture != nullptr; }

    void warn(const char *call, PaError error) const
    {
        qWarning().nospace() << name << ": " << call << " failed: " << Pa_GetErrorText(error);
    }
};

namespace {

PaStreamParameters parametersOf(const AudioStreamConfig &config, bool isInput)
{
    const PaDeviceIndex chosen =
        config.device ? *config.device : (isInput ? Pa_GetDefaultInputDevice() : Pa_GetDefaultOutputDevice());
    const PaDeviceInfo *info = Pa_GetDeviceInfo(chosen);
    PaStreamParameters parameters{};
    parameters.device = chosen;
    parameters.channelCount = config.channels;
    parameters.sampleFormat = isInput ? paInt16 : paFloat32;
    if (info) // a device that isn't there fails to open
        parameters.suggestedLatency = isInput ? info->defaultLowInputLatency : info->defaultLowOutputLatency;
    return parameters;
}

} // namespace

std::unique_ptr<SoundStream> SoundStream::openInput(const AudioStreamConfig &config, Capture capture)
{
    auto calls = std::make_unique<Calls>();
    calls->name = "InputAudioStream";
    calls->capture = std::move(capture);
    return open(config, std::move(calls));
}

std::unique_ptr<SoundStream> SoundStream::openOutput(const AudioStreamConfig &config, Play play)
{
    auto calls = std::make_unique<Calls>();
    calls->name = "MixedOutputAudioStream";
    calls->play = std::move(play);
    qDebug().nospace() << calls->name << ": " << config.channels << " channels";
    return open(config, std::move(calls));
}

std::unique_ptr<SoundStream> SoundStream::open(const AudioStreamConfig &config, std::unique_ptr<Calls> made)
{
    std::unique_ptr<SoundStream> result(new SoundStream(std::move(made))); // the constructor is private
    Calls &calls = *result->m_calls;
    calls.channels = static_cast<std::size_t>(config.channels);
    const PaStreamParameters parameters = parametersOf(config, calls.isInput());
    const PaStreamParameters *input = calls.isInput() ? &parameters : nullptr;
    const PaStreamParameters *output = calls.isInput() ? nullptr : &parameters;
    const auto frames = static_cast<unsigned long>(config.framesPerBuffer / config.channels);
    PaStream *stream = nullptr;
    if (const PaError error =
            Pa_OpenStream(&stream, input, output, config.sampleRate, frames, paClipOff, &Calls::onBuffer, &calls)) {
        calls.warn("Pa_OpenStream", error);
        return nullptr;
    }
    Pa_SetStreamFinishedCallback(stream, &Calls::onEnd);
    calls.stream = stream;
    return result;
}

SoundStream::SoundStream(std::unique_ptr<Calls> calls) : m_calls(std::move(calls)) {}

std::atomic<SoundStream::Calls *> SoundStream::leftBehind = nullptr;

SoundStream::~SoundStream()
{
    if (!m_calls->stream)
        return;
    m_calls->next = leftBehind.exchange(m_calls.get());
    (void)m_calls.release(); // never destroyed: the stream may still call them
}

bool SoundStream::start()
{
    if (const PaError error = Pa_StartStream(m_calls->stream)) {
        m_calls->warn("Pa_StartStream", error);
        Pa_CloseStream(m_calls->stream);
        m_calls->stream = nullptr;
        return false;
    }
    m_calls->lastBuffer = Clock::now();
    qDebug().nospace() << m_calls->name << ": started";
    const PaStreamInfo *info = Pa_GetStreamInfo(m_calls->stream);
    const double latency = info ? info->inputLatency + info->outputLatency : 0; // one of them is 0
    qDebug().nospace() << m_calls->name << ": latency " << 1000 * latency << " ms";
    return true;
}

bool SoundStream::isActive() const
{
    return Pa_IsStreamActive(m_calls->stream) == 1 && Clock::now() - m_calls->lastBuffer.load() < longestGap;
}

void SoundStream::close()
{
    Calls &calls = *m_calls;
    if (Pa_IsStreamActive(calls.stream) == 1 && !calls.lives()) {
        calls.isWanted = false;
        qWarning().nospace() << calls.name << ": the sound system doesn't answer, the stream is left behind";
        return;
    }
    calls.isWanted = false;
    Pa_StopStream(calls.stream);
    Pa_CloseStream(calls.stream);
    calls.stream = nullptr;
    const char *priority = calls.priority;
    qDebug().nospace() << calls.name << ": stopped";
    qDebug().nospace() << calls.name << ": " << calls.buffers.load() << " buffers, " << calls.lost.load()
                       << " times late, priority: " << (priority ? priority : "none");
}

} // namespace tarvo::voice
