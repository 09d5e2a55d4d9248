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

/// What PortAudio's threads use of a stream.
struct Calls
{
    SoundCalls sound;
    const char *name; ///< for the log
    std::size_t channels;

    PaStream *stream = nullptr;        ///< null before it is open, and once it is closed
    std::atomic<bool> isWanted = true; ///< false when its end is our doing
    std::atomic<const char *> priority = nullptr;
    std::atomic<Clock::time_point> lastBuffer = Clock::time_point();
    std::atomic<int> buffers = 0;
    std::atomic<int> lost = 0; ///< how often the device had to wait for us, or we lost what it had

    Calls *next = nullptr; ///< of those left behind

    Calls(StreamRole role, SoundCalls called, int channelCount)
        : sound(std::move(called)),
          name(role == StreamRole::Input ? "InputAudioStream" : "MixedOutputAudioStream"),
          channels(static_cast<std::size_t>(channelCount))
    {
    }

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
        if (!self.isWanted)
            return;
        qWarning().nospace() << self.name << ": the sound system has ended the stream";
        self.sound.ended();
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
        if (output)
            sound.play({static_cast<float *>(output), samples});
        if (input)
            sound.capture({static_cast<const std::int16_t *>(input), samples});
    }

    /// Waits for the next buffer; false when it doesn't come.
    bool lives() const
    {
        const int before = buffers;
        for (int i = 0; i < longestWait.count() && buffers == before; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return buffers != before;
    }

    void warn(const char *call, PaError error) const
    {
        qWarning().nospace() << name << ": " << call << " failed: " << Pa_GetErrorText(error);
    }
};

/// Those of streams that were left behind; known to whom looks for leaks.
std::atomic<Calls *> leftBehind = nullptr;

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

class PortAudioStream : public SoundStream
{
public:
    explicit PortAudioStream(std::unique_ptr<Calls> calls) : m_calls(std::move(calls)) {}
    /// A stream that is not closed, or can't be, is left behind, and what it calls is kept to the program's end.
    /// PortAudio may hang, and so only close() calls it.
    ~PortAudioStream() override;

    bool start() override;
    bool isActive() const override;
    void close() override;

private:
    std::unique_ptr<Calls> m_calls;
};

PortAudioStream::~PortAudioStream()
{
    if (!m_calls->stream)
        return;
    m_calls->next = leftBehind.exchange(m_calls.get());
    (void)m_calls.release(); // never destroyed: the stream may still call them
}

bool PortAudioStream::start()
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

bool PortAudioStream::isActive() const
{
    return Pa_IsStreamActive(m_calls->stream) == 1 && Clock::now() - m_calls->lastBuffer.load() < longestGap;
}

void PortAudioStream::close()
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

} // namespace

bool isAnySoundLeftBehind()
{
    return leftBehind != nullptr;
}

std::unique_ptr<SoundStream> openSound(StreamRole role, const AudioStreamConfig &config, SoundCalls sound)
{
    auto calls = std::make_unique<Calls>(role, std::move(sound), config.channels);
    const bool isInput = role == StreamRole::Input;
    prepareAudioPriority();
    if (!isInput)
        qDebug().nospace() << calls->name << ": " << config.channels << " channels";
    const PaStreamParameters parameters = parametersOf(config, isInput);
    const PaStreamParameters *input = isInput ? &parameters : nullptr;
    const PaStreamParameters *output = isInput ? nullptr : &parameters;
    const auto frames = static_cast<unsigned long>(config.framesPerBuffer / config.channels);
    if (const PaError error = Pa_OpenStream(&calls->stream, input, output, config.sampleRate, frames, paClipOff,
                                            &Calls::onBuffer, calls.get())) {
        calls->warn("Pa_OpenStream", error);
        return nullptr;
    }
    Pa_SetStreamFinishedCallback(calls->stream, &Calls::onEnd);
    return std::make_unique<PortAudioStream>(std::move(calls));
}

} // namespace tarvo::voice
