#pragma once

#include "voice/codec/AudioStreamConfig.h"

#include <functional>
#include <memory>

namespace tarvo::voice {

struct DeviceInfo;
class SoundStream;

/// Which of the three streams it is.
enum class StreamRole
{
    Input,
    Headphone,
    Speaker,
};

/// How a device of 20 ms buffers is opened: at its own rate, with one or two channels.
AudioStreamConfig configFor(const DeviceInfo &device, StreamRole role);

/// One of the streams as the SoundThread sees it, where all its members are called: the chosen device, and the stream
/// while it is open.
class DeviceStream
{
public:
    /// Opens a stream; null when that fails.
    using Open = std::function<std::unique_ptr<SoundStream>(const AudioStreamConfig &)>;

    /// `closed`: called when a stream has been closed.
    DeviceStream(StreamRole role, Open open, std::function<void()> closed);
    ~DeviceStream();

    /// Chooses a device by PortAudio's index; negative: the default. A stream that is open goes on with it. When there
    /// is no such device the log tells, and what was chosen stays.
    void setDevice(int device);
    /// Nothing when it is open.
    void start();
    void stop();

private:
    bool choose(int device);

    const StreamRole m_role;
    const Open m_open;
    const std::function<void()> m_closed;
    AudioStreamConfig m_config;
    std::unique_ptr<SoundStream> m_stream;
};

} // namespace tarvo::voice
