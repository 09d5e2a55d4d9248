#pragma once

#include "common/VolumeInfo.h"

#include <QObject>

#include <cstdint>
#include <memory>
#include <set>
#include <span>
#include <vector>

namespace tarvo::voice {

class DeviceStream;
class Mailbox;
class SineTone;
class SoundThread;
class VoicePlayback;
enum class StreamRole;

/// An output that mixes the radios' voice. What is asked of its device is done on the SoundThread, in order, and
/// returns at once; sound that comes while it isn't open is dropped.
class MixedOutputAudioStream : public QObject
{
    Q_OBJECT

public:
    /// `role`: headphone or speaker.
    MixedOutputAudioStream(StreamRole role, std::shared_ptr<SoundThread> sound, QObject *parent = nullptr);
    ~MixedOutputAudioStream() override;

    /// PortAudio's index; negative: the default. An open stream goes on with its channels.
    void setDevice(int device);
    void start(); ///< nothing when it is open
    void stop();  ///< forgets the channels

    /// True from when the sound thread has opened it.
    bool isRunning() const { return m_playback != nullptr; }
    int sampleRate() const; ///< of the open stream, in Hz

    void addChannel(int id);
    void removeChannel(int id);
    void playPacket(int channel, const std::vector<std::uint8_t> &opus, bool conflict, float volume);
    /// Plays 20 ms before all voice.
    void playLocal(std::span<const float> frame);
    void playTone(SineTone &tone, float volume);

    /// From now on plays with this; null: it is closed. The sound thread's word, and a test's.
    void setPlayback(std::shared_ptr<VoicePlayback> playback);

signals:
    void outputVolumeChanged(tarvo::common::VolumeInfo volume);

private:
    std::shared_ptr<SoundThread> m_sound;
    std::shared_ptr<Mailbox> m_mailbox;
    std::shared_ptr<DeviceStream> m_stream; ///< the sound thread's
    std::shared_ptr<VoicePlayback> m_playback;
    std::set<int> m_channels; ///< each opened stream begins with them
};

} // namespace tarvo::voice
