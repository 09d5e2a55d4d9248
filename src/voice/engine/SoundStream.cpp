#include "voice/engine/SoundStream.h"

#include "voice/codec/AudioStreamConfig.h"
#include "voice/engine/AudioPriority.h"

#include <QDebug>

#include <portaudio.h>

#include <atomic>
#include <cstddef>
#include <mutex>
#include <utility>
#include <vector>

namespace tarvo::voice {

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
    std::atomic<int> buffers = 0;
    std::atomic<int> lost = 0; ///< how often the device had to wait for us, or we lost what it had

    static int onBuffer(const void *input, void *output, unsigned long frames, const PaStreamCallbackTimeInfo *,
                        PaStreamCallbackFlags flags, void *calls)
    {
        static_cast<Calls *>(calls)->handle(input, output, frames, flags);
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
        ++buffers;
        if (flags & (paInputOverflow | paOutputUnderflow))
            ++lost;
        const std::size_t samples = frames * channels;
        if (play && output)
            play({static_cast<float *>(output), samples});
        if (capture && input)
            capture({static_cast<const std::int16_t *>(input), samples});
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

SoundStream::~SoundStream()
{
    if (!m_calls->stream)
        return;
    static std::mutex mutex;
    static auto &leftBehind = *new std::vector<std::unique_ptr<Calls>>; // never destroyed: the stream still calls them
    const std::scoped_lock lock(mutex);
    leftBehind.push_back(std::move(m_calls));
}

bool SoundStream::start()
{
    if (const PaError error = Pa_StartStream(m_calls->stream)) {
        m_calls->warn("Pa_StartStream", error);
        Pa_CloseStream(m_calls->stream);
        m_calls->stream = nullptr;
        return false;
    }
    qDebug().nospace() << m_calls->name << ": started";
    return true;
}

bool SoundStream::isActive() const
{
    return m_calls->stream && Pa_IsStreamActive(m_calls->stream) == 1;
}

void SoundStream::close()
{
    Calls &calls = *m_calls;
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
