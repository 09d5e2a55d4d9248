#pragma once

#include "common/VolumeInfo.h"

#include <QObject>

#include <cstdint>
#include <memory>
#include <set>
#include <span>
#include <vector>

namespace tarvo::voice {

class DeviceStreams;
class Mailbox;
class SineTone;
class VoicePlayback;
enum class StreamRole;

/// An output that mixes the radios' voice. Sound that comes while it isn't open is dropped.
class MixedOutputAudioStream : public QObject
{
    Q_OBJECT

public:
    /// Connects itself to the device of its role among `streams`: headphone or speaker.
    MixedOutputAudioStream(StreamRole role, DeviceStreams &streams, QObject *parent = nullptr);
    ~MixedOutputAudioStream() override;

    /// True from when the sound thread has opened it.
    bool isRunning() const { return m_playback != nullptr; }
    int sampleRate() const; ///< of the open stream, in Hz

    // Each opened stream begins with the channels that are there.
    void addChannel(int id);
    void removeChannel(int id);
    void forgetChannels(); ///< when the stream is about to be closed

    void playPacket(int channel, const std::vector<std::uint8_t> &opus, bool conflict, float volume);
    /// Plays 20 ms before all voice.
    void playLocal(std::span<const float> frame);
    void playTone(SineTone &tone, float volume);

    /// From now on plays with this; null: it is closed. The sound thread's word, and a test's.
    void setPlayback(std::shared_ptr<VoicePlayback> playback);

signals:
    void outputVolumeChanged(tarvo::common::VolumeInfo volume);

private:
    std::shared_ptr<Mailbox> m_mailbox;
    std::shared_ptr<VoicePlayback> m_playback;
    std::set<int> m_channels;
};

} // namespace tarvo::voice
