#include "voice/engine/SoundStream.h"

#include "voice/codec/AudioStreamConfig.h"
#include "voice/engine/AudioPriority.h"

#include <QDebug>

#include <portaudio.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace tarvo::voice {

namespace {

using Clock = std::chrono::steady_clock;

// A stream that lives wants a buffer every 20 ms. One that doesn't can't be stopped: a sound server that is stopped
// keeps whoever tries waiting, and PortAudio 19.6 may overlook the end of a stream that ends together with another,
// whose thread then goes round for good. A slow device may take long for its first buffer.
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
    std::atomic<bool> hasEnded = false;
    std::atomic<const char *> priority = nullptr;
    std::atomic<Clock::time_point> lastBuffer = Clock::time_point();
    std::atomic<int> buffers = 0;
    std::atomic<int> lost = 0; ///< how often the device had to wait for us, or we lost what it had

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
        auto &self = *static_cast<Calls *>(calls);
        if (self.isWanted) {
            qWarning().nospace() << self.name << ": the sound system has ended the stream";
            self.sound.ended();
        }
        self.hasEnded = true;
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
        const auto longest = before == 0 ? longestGap : longestWait;
        for (int i = 0; i < longest.count() && buffers == before; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return buffers != before;
    }

    void closeStream()
    {
        isWanted = false;
        Pa_StopStream(stream);
        Pa_CloseStream(stream);
    }

    void warn(const char *call, PaError error) const
    {
        qWarning().nospace() << name << ": " << call << " failed: " << Pa_GetErrorText(error);
    }
};

/// Those of streams that were left behind. Never destroyed at the program's end, because these may still call them.
struct LeftBehind
{
    std::mutex mutex; ///< a sound thread may itself be left behind
    std::vector<std::unique_ptr<Calls>> calls;
};

LeftBehind &leftBehind()
{
    static LeftBehind &all = *std::make_unique<LeftBehind>().release();
    return all;
}

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
    /// PortAudio may hang, and so only close() calls it: without that the stream is left behind.
    ~PortAudioStream() override;

    bool start() override;
    bool isActive() const override;
    void close() override;

private:
    void leaveBehind();

    std::unique_ptr<Calls> m_calls; ///< null once it is left behind
};

PortAudioStream::~PortAudioStream()
{
    if (m_calls && m_calls->stream)
        leaveBehind();
}

/// What the stream calls is kept until it has ended.
void PortAudioStream::leaveBehind()
{
    m_calls->isWanted = false;
    const std::scoped_lock lock(leftBehind().mutex);
    leftBehind().calls.push_back(std::move(m_calls));
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
        qWarning().nospace() << calls.name << ": the sound system doesn't answer, the stream is left behind";
        leaveBehind();
        return;
    }
    calls.closeStream();
    calls.stream = nullptr;
    const char *priority = calls.priority;
    qDebug().nospace() << calls.name << ": stopped";
    qDebug().nospace() << calls.name << ": " << calls.buffers.load() << " buffers, " << calls.lost.load()
                       << " times late, priority: " << (priority ? priority : "none");
}

} // namespace

void closeEndedSound()
{
    const std::scoped_lock lock(leftBehind().mutex);
    std::erase_if(leftBehind().calls, [](const std::unique_ptr<Calls> &calls) {
        if (!calls->hasEnded)
            return false;
        calls->closeStream();
        qDebug().nospace() << calls->name << ": the stream that was left behind has ended";
        return true;
    });
}

bool isAnySoundLeftBehind()
{
    const std::scoped_lock lock(leftBehind().mutex);
    return !leftBehind().calls.empty();
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
