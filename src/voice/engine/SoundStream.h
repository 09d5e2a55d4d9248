#pragma once

#include "voice/engine/StreamRole.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace tarvo::voice {

struct AudioStreamConfig;

/// What a stream calls, on a thread of the sound system. An input captures, an output plays.
struct SoundCalls
{
    std::function<void(std::span<const std::int16_t>)> capture;
    std::function<void(std::span<float>)> play; ///< fills all of it
    std::function<void()> ended;                ///< it has ended, and nobody has closed it
};

/// A stream of the sound system, in buffers of 20 ms of interleaved samples. It has been opened, and start() makes it
/// run. Used on the SoundThread.
class SoundStream
{
public:
    SoundStream() = default;
    virtual ~SoundStream() = default;
    SoundStream(const SoundStream &) = delete;
    SoundStream &operator=(const SoundStream &) = delete;

    /// False when that fails: then it is closed, and the log tells.
    virtual bool start() = 0;
    /// False before the start, and once the sound system has ended it, such as a sound server that was killed.
    virtual bool isActive() const = 0;
    /// Stops and closes it; one that doesn't answer is left behind, as the log tells. Nothing is called any more.
    virtual void close() = 0;
};

/// A way to open a stream. Null, and the log tells, when the device can't be opened.
using OpenSound = std::function<std::unique_ptr<SoundStream>(StreamRole, const AudioStreamConfig &, SoundCalls)>;

/// Closes what was left behind and has ended since, as it does when a stopped sound server goes on.
void closeEndedSound();
/// True while a stream is left behind: PortAudio must not be ended then, because it would wait for that one.
bool isAnySoundLeftBehind();

/// PortAudio's. The three above are called on the SoundThread, too.
std::unique_ptr<SoundStream> openSound(StreamRole role, const AudioStreamConfig &config, SoundCalls calls);

} // namespace tarvo::voice
