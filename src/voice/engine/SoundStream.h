#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace tarvo::voice {

struct AudioStreamConfig;

/// An open and started stream of PortAudio, in buffers of 20 ms. Used on the SoundThread; the calls come on
/// PortAudio's.
class SoundStream
{
public:
    using Capture = std::function<void(std::span<const std::int16_t>)>;
    using Play = std::function<void(std::span<float>)>; ///< fills all of it

    // Not started yet. Null, and the log tells, when the device can't be opened. Samples are interleaved.
    static std::unique_ptr<SoundStream> openInput(const AudioStreamConfig &config, Capture capture);
    static std::unique_ptr<SoundStream> openOutput(const AudioStreamConfig &config, Play play);

    /// A stream that is not closed, or can't be, is left behind, and what it calls is kept to the program's end.
    /// PortAudio may hang, and so only close() calls it.
    ~SoundStream();
    SoundStream(const SoundStream &) = delete;
    SoundStream &operator=(const SoundStream &) = delete;

    /// False when that fails: then it is closed, and the log tells.
    bool start();
    /// False before the start, and once the sound system has ended it, such as a sound server that was killed.
    bool isActive() const;
    /// Stops and closes it; one that doesn't answer is left behind, as the log tells. Nothing is called any more.
    void close();

private:
    struct Calls;

    explicit SoundStream(std::unique_ptr<Calls> calls);
    static std::unique_ptr<SoundStream> open(const AudioStreamConfig &config, std::unique_ptr<Calls> calls);

    static std::atomic<Calls *> leftBehind; ///< a list of them; known to whom looks for leaks

    std::unique_ptr<Calls> m_calls;
};

} // namespace tarvo::voice
