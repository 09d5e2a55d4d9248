#include "voice/engine/VoicePlayback.h"

#include "voice/codec/CodecFormat.h"
#include "voice/codec/Resampler.h"
#include "voice/engine/Samples.h"
#include "voice/engine/Tones.h"

#include <algorithm>

namespace tarvo::voice {

VoicePlayback::VoicePlayback(const AudioStreamConfig &config)
    : m_config(config),
      m_decoder(config),
      m_conflictTone(config.sampleRate, conflictFrequency, toneAmplitude),
      m_toneFrame(static_cast<std::size_t>(std::max(config.framesPerBuffer, 1))),
      m_mixer(m_toneFrame.size())
{
}

std::optional<common::VolumeInfo> VoicePlayback::playPacket(int channel, std::span<const std::uint8_t> opus,
                                                            bool conflict, float volume)
{
    if (conflict) {
        playTone(m_conflictTone, volume);
        return std::nullopt;
    }
    const std::vector<float> decoded = m_decoder.decode(opus.data(), static_cast<int>(opus.size()));
    if (decoded.empty())
        return std::nullopt;
    std::vector<float> samples = resampleFloat(decoded, codecSampleRate, m_config.sampleRate);
    samples.resize(m_toneFrame.size()); // where 20 ms are no whole number of samples, one too many would begin a frame
    setVolume(samples, volume);
    m_mixer.pushVoice(channel, samples);
    return levelOf(decoded);
}

void VoicePlayback::playTone(SineTone &tone, float volume)
{
    tone.take(m_toneFrame, volume, m_config.channels);
    setVolume(m_toneFrame, 1); // clips: behind an absurd volume a device may take any sound for another
    playLocal(m_toneFrame);
}

} // namespace tarvo::voice
