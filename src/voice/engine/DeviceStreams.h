#pragma once

#include "voice/codec/AudioStreamConfig.h"
#include "voice/engine/SoundStream.h"
#include "voice/engine/SoundSystem.h"
#include "voice/engine/StreamRole.h"

#include <QByteArray>
#include <QList>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tarvo::voice {

/// How a device of 20 ms buffers is opened: at its own rate, with one or two channels.
AudioStreamConfig configFor(const DeviceInfo &device, StreamRole role);

/// What is wanted of a stream.
struct StreamWish
{
    bool isOpen = false;
    std::optional<int> device; ///< PortAudio's index of one that was chosen since; negative: the default
};

/// What has become of all wishes.
struct StreamsReport
{
    std::vector<StreamRole> ended;    ///< those that had ended by themselves
    std::vector<StreamRole> missing;  ///< those that should run and don't
    std::vector<StreamRole> replaced; ///< those that were opened on another device than the last time
    bool anyRuns = false;
    bool haveDevicesChanged = false; ///< PortAudio's indices are no longer what they were
};

/// What is done for streams that should run and don't.
enum class Opening
{
    None,
    Wanted,   ///< they are opened
    Searched, ///< the same; if none runs PortAudio searches for devices before that
    Anew,     ///< the same; those that run are closed before that
};

/// The sound system as the streams see it. All is called on the SoundThread.
struct SoundAccess
{
    OpenSound open;
    std::function<bool()> search; ///< for devices again; false when that can't be done
    std::function<QList<DeviceInfo>()> devices;
    std::function<int(StreamRole)> defaultDevice; ///< negative when there is none
};

/// PortAudio's.
SoundAccess portAudio();

/// The engine's three streams as the SoundThread sees them, where all members but connect() are called: each one's
/// device, and the stream while it is open.
///
/// A stream is opened only while none runs. PortAudio 19.6 on Linux keeps its error codes in a variable that the
/// threads of all streams write: beside a running stream it overlooks that another can't be opened, and ends the
/// program or hangs. So those that run are opened anew together with the one that is to come.
class DeviceStreams
{
public:
    using Wishes = std::array<StreamWish, 3>; ///< by role
    struct Sound
    {
        SoundCalls calls;              ///< but for `ended`
        std::function<void()> started; ///< called when the stream runs
    };
    using Make = std::function<Sound(const AudioStreamConfig &)>;

    /// `ended` is called, on any thread, when a stream ends that nobody has closed.
    DeviceStreams(SoundAccess access, std::function<void()> ended);

    /// Before all else: what a stream is to play or capture, and what is called when one that ran has been closed.
    void connect(StreamRole role, Make make, std::function<void()> closed);

    /// Closes what is not wanted, and what has ended, and opens what is missing as it is told. A stream goes on with
    /// a device that was chosen for it; when there is no such device the log tells, and it keeps the one it has. When
    /// the devices have changed nothing is opened: they are to be chosen again. Where one that is wanted has gone,
    /// others take its place only after some attempts: a sound server that restarts needs its hardware for itself.
    StreamsReport fulfil(const Wishes &wishes, Opening opening);

private:
    struct One
    {
        Make make;
        std::function<void()> closed;
        AudioStreamConfig config;
        QByteArray device;                   ///< the name of the chosen one; empty before that
        QByteArray lastDevice;               ///< the name of the one that ran last
        std::unique_ptr<SoundStream> stream; ///< while it runs, or has ended by itself
        std::function<void()> started;       ///< of that stream

        bool start();
        void close();
    };

    enum class Found
    {
        TheSame,
        Others,
        NotAll, ///< the rest may come yet
    };

    One &at(StreamRole role) { return m_streams[static_cast<std::size_t>(role)]; }
    bool settle(StreamRole role, const StreamWish &wish);
    bool choose(StreamRole role, int device);
    void closeAll();
    bool anyRuns() const;
    bool hasReasonToSearch(Opening opening) const;
    QList<QByteArray> wantedDevices(const Wishes &wishes) const;
    Found search(const Wishes &wishes);
    void moveTo(const QList<DeviceInfo> &found);
    void openWanted(const Wishes &wishes, StreamsReport &report);

    const SoundAccess m_access;
    const std::function<void()> m_ended;
    std::array<One, 3> m_streams;
    std::optional<QList<DeviceInfo>> m_offered; ///< what devices are chosen from, by index
    int m_incomplete = 0;                       ///< searches in succession that haven't found all that is wanted
    QList<QByteArray> m_missed;                 ///< devices that others took the place of; they may come back
};

} // namespace tarvo::voice
