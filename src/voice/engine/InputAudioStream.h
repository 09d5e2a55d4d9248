#pragma once

#include "common/VolumeInfo.h"

#include <QObject>

#include <cstdint>
#include <memory>
#include <vector>

namespace tarvo::voice {

struct CaptureControls;
struct CapturedFrame;
class DeviceStream;
class Mailbox;
class SoundThread;

/// The microphone. What is asked of it is done on the SoundThread, in order, and returns at once.
class InputAudioStream : public QObject
{
    Q_OBJECT

public:
    explicit InputAudioStream(std::shared_ptr<SoundThread> sound, QObject *parent = nullptr);
    ~InputAudioStream() override;

    /// PortAudio's index; negative: the default.
    void setDevice(int device);
    void start(); ///< nothing when it is open
    void stop();

    /// The push-to-talk gate: while it is closed nothing is heard, metered or sent. Any thread.
    void setTransmitEnabled(bool enabled);
    void setMicGain(int db);

    /// What the audio thread has made.
    void deliver(const CapturedFrame &frame);

signals:
    void encodedAudioReady(std::vector<uint8_t> data);
    void inputVolumeChanged(tarvo::common::VolumeInfo volume);

private:
    std::shared_ptr<SoundThread> m_sound;
    std::shared_ptr<Mailbox> m_mailbox;
    std::shared_ptr<CaptureControls> m_controls;
    std::shared_ptr<DeviceStream> m_stream; ///< the sound thread's
};

} // namespace tarvo::voice
