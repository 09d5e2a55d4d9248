#include "voice/engine/MixedOutputAudioStream.h"

#include "voice/engine/DeviceStreams.h"
#include "voice/engine/Mailbox.h"
#include "voice/engine/Tones.h"
#include "voice/engine/VoicePlayback.h"

#include <optional>
#include <utility>

namespace tarvo::voice {

MixedOutputAudioStream::MixedOutputAudioStream(StreamRole role, DeviceStreams &streams, QObject *parent)
    : QObject(parent), m_mailbox(std::make_shared<Mailbox>(this))
{
    const auto tell = [this, mailbox = m_mailbox](const std::shared_ptr<VoicePlayback> &playback) {
        mailbox->send([this, playback] { setPlayback(playback); });
    };
    const auto make = [tell](const AudioStreamConfig &config) {
        const auto playback = std::make_shared<VoicePlayback>(config);
        DeviceStreams::Sound sound{.calls = {}, .started = [tell, playback] { tell(playback); }};
        sound.calls.play = [playback](std::span<float> out) { playback->mix(out); };
        return sound;
    };
    streams.connect(role, make, [tell] { tell(nullptr); });
}

MixedOutputAudioStream::~MixedOutputAudioStream()
{
    m_mailbox->close();
}

int MixedOutputAudioStream::sampleRate() const
{
    return m_playback ? m_playback->config().sampleRate : usualToneRate;
}

void MixedOutputAudioStream::addChannel(int id)
{
    m_channels.insert(id);
    if (m_playback)
        m_playback->addChannel(id);
}

void MixedOutputAudioStream::removeChannel(int id)
{
    m_channels.erase(id);
    if (m_playback)
        m_playback->removeChannel(id);
}

void MixedOutputAudioStream::forgetChannels()
{
    while (!m_channels.empty())
        removeChannel(*m_channels.begin());
}

void MixedOutputAudioStream::playPacket(int channel, const std::vector<std::uint8_t> &opus, bool conflict, float volume)
{
    if (!m_playback)
        return;
    if (const std::optional<common::VolumeInfo> level = m_playback->playPacket(channel, opus, conflict, volume))
        emit outputVolumeChanged(*level);
}

void MixedOutputAudioStream::playLocal(std::span<const float> frame)
{
    if (m_playback)
        m_playback->playLocal(frame);
}

void MixedOutputAudioStream::playTone(SineTone &tone, float volume)
{
    if (m_playback)
        m_playback->playTone(tone, volume);
}

void MixedOutputAudioStream::setPlayback(std::shared_ptr<VoicePlayback> playback)
{
    m_playback = std::move(playback);
    if (!m_playback)
        return;
    for (const int id : m_channels)
        m_playback->addChannel(id);
}

} // namespace tarvo::voice
