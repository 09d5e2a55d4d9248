#pragma once

#include "voice/engine/DeviceStreams.h"
#include "voice/engine/RetryPace.h"
#include "voice/engine/SoundLease.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

namespace tarvo::voice {

class Mailbox;
class SoundThread;

/// What happens to devices that are in use.
enum class DeviceEvent
{
    Ended,    ///< the sound system has ended them, such as a sound server that was killed, or a plug that was pulled
    Failed,   ///< they can't be opened
    Back,     ///< they run again, or at last
    Replaced, ///< others run in their place
};

/// What is wanted of the engine's streams. Everything returns at once, and the SoundThread works towards the newest
/// wishes: ten that come while the sound system hangs are done as one. What ends by itself or can't be opened is tried
/// again (RetryPace).
class DeviceWishes : public QObject
{
    Q_OBJECT

public:
    using Roles = std::vector<StreamRole>;

    DeviceWishes(std::shared_ptr<SoundThread> sound, SoundAccess access, QObject *parent = nullptr);
    ~DeviceWishes() override;

    DeviceStreams &streams() { return *m_streams; }

    /// The pilot's devices are not known yet: nothing is done until stopWaiting().
    void wait() { m_isWaiting = true; }
    void stopWaiting();

    /// The pilot has chosen one that isn't there: it is searched for at each start. What a lost session has left
    /// running is interrupted for that.
    void setMissed(bool isAny) { m_isAnyMissed = isAny; }
    /// PortAudio's index; negative: the default device.
    void setDevice(StreamRole role, int device);
    /// `whenTried` is called on this object's thread when that has been tried, with devices that are there.
    void start(const Roles &roles, std::function<void()> whenTried = {});
    void stop(const Roles &roles);

signals:
    /// Told once for each device that was asked for.
    void happened(tarvo::voice::DeviceEvent event, const std::vector<tarvo::voice::StreamRole> &roles);
    /// PortAudio offers others than before: setDevice() has to name them again.
    void devicesChanged();

private:
    using Calls = std::vector<std::function<void()>>;

    /// What the sound thread works at.
    struct Round
    {
        DeviceStreams::Wishes wishes;
        Opening opening = Opening::None;
        bool isAnew = false; ///< what runs is to be opened anew, too
        Calls whenTried;
        int change = 0; ///< the last one that it knows of
    };

    StreamWish &at(StreamRole role) { return m_round.wishes[static_cast<std::size_t>(role)]; }
    void change();
    void work();
    void forgetTold();
    void onWorked(const StreamsReport &report, const Round &round);
    void goOn(const StreamsReport &report, Opening opening);
    void tellEnded(const StreamsReport &report);
    void tellOutcome(const StreamsReport &report, int change);
    Roles wanted(const Roles &roles);
    void tell(DeviceEvent event, const Roles &roles);

    const std::shared_ptr<SoundThread> m_sound;
    const std::shared_ptr<Mailbox> m_mailbox;
    const SoundLease m_lease;
    const std::shared_ptr<DeviceStreams> m_streams; ///< the sound thread's
    Round m_round;                                  ///< the next
    bool m_isWaiting = false;
    bool m_isAnyMissed = false;
    bool m_isWorking = false; ///< the sound thread does, or will
    bool m_isBehind = false;  ///< there has been a reason to work since
    QTimer m_next{this};
    RetryPace m_retries;
    Roles m_missing;      ///< which the pilot has been told
    int m_toldChange = 0; ///< the last one whose outcome he has been told; of a later one he is told that, too
};

} // namespace tarvo::voice
