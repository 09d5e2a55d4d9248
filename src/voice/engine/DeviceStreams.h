#pragma once

#include "voice/codec/AudioStreamConfig.h"
#include "voice/engine/SoundStream.h"

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace tarvo::voice {

struct DeviceInfo;

enum class StreamRole
{
    Input,
    Headphone,
    Speaker,
};

/// How a device of 20 ms buffers is opened: at its own rate, with one or two channels.
AudioStreamConfig configFor(const DeviceInfo &device, StreamRole role);

/// The engine's three streams as the SoundThread sees them, where all members but connect() are called: each one's
/// device, and the stream while it is open.
///
/// A stream is opened only while none runs. PortAudio 19.6 on Linux keeps its error codes in a variable that the
/// threads of all streams write: beside a running stream it overlooks that another can't be opened, and ends the
/// program or hangs. So those that run are opened anew together with the one that is to come.
class DeviceStreams
{
public:
    struct Opened
    {
        std::unique_ptr<SoundStream> stream; ///< null when that failed
        std::function<void()> started;       ///< called when it runs
    };
    using Open = std::function<Opened(const AudioStreamConfig &)>;

    /// Before all else. `closed` is called when a stream that ran has been closed.
    void connect(StreamRole role, Open open, std::function<void()> closed);

    /// Chooses a device by PortAudio's index; negative: the default. A stream that was started goes on with it, also
    /// one that couldn't be opened. When there is no such device the log tells, and what was chosen stays.
    void setDevice(StreamRole role, int device);
    /// Nothing for those that run.
    void start(const std::vector<StreamRole> &roles);
    void stop(StreamRole role);

private:
    struct One
    {
        Open open;
        std::function<void()> closed;
        AudioStreamConfig config;
        std::unique_ptr<SoundStream> stream;
        bool isWanted = false; ///< from start() to stop()

        bool runs() const;
        void close();
    };

    One &at(StreamRole role) { return m_streams[static_cast<std::size_t>(role)]; }
    bool choose(StreamRole role, int device);
    void startWanted();

    std::array<One, 3> m_streams;
};

} // namespace tarvo::voice
