#pragma once

#include "common/VolumeInfo.h"

#include <QObject>

#include <cstdint>
#include <memory>
#include <vector>

namespace tarvo::voice {

struct CaptureControls;
struct CapturedFrame;
class DeviceStreams;
class Mailbox;

/// The microphone.
class InputAudioStream : public QObject
{
    Q_OBJECT

public:
    /// Connects itself to its device among `streams`.
    explicit InputAudioStream(DeviceStreams &streams, QObject *parent = nullptr);
    ~InputAudioStream() override;

    /// The push-to-talk gate: while it is closed nothing is heard, metered or sent. Any thread.
    void setTransmitEnabled(bool enabled);
    bool isTransmitEnabled() const;
    void setMicGain(int db);
    const CaptureControls &controls() const { return *m_controls; }

    /// What the audio thread has made.
    void deliver(const CapturedFrame &frame);

signals:
    void encodedAudioReady(std::vector<uint8_t> data);
    void inputVolumeChanged(tarvo::common::VolumeInfo volume);

private:
    std::shared_ptr<Mailbox> m_mailbox;
    std::shared_ptr<CaptureControls> m_controls;
};

} // namespace tarvo::voice
