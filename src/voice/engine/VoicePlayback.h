#pragma once

#include "common/VolumeInfo.h"
#include "voice/codec/AudioStreamConfig.h"
#include "voice/codec/OpusDecoder.h"
#include "voice/engine/OutputMixer.h"
#include "voice/engine/SineTone.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tarvo::voice {

/// What one output plays: Opus packets of several channels, and the tones of our own. One thread puts in; mix() is the
/// audio thread's.
class VoicePlayback
{
public:
    explicit VoicePlayback(const AudioStreamConfig &config);

    const AudioStreamConfig &config() const { return m_config; }

    void addChannel(int id) { m_mixer.addChannel(id); }
    void removeChannel(int id) { m_mixer.removeChannel(id); }

    /// Plays a packet on a channel, times `volume`. Its level before that; none when it can't be decoded. With
    /// `conflict` it is not decoded: a buzz takes its place.
    std::optional<common::VolumeInfo> playPacket(int channel, std::span<const std::uint8_t> opus, bool conflict,
                                                 float volume);
    /// Plays 20 ms before all voice.
    void playLocal(std::span<const float> frame) { m_mixer.pushLocal(frame); }
    /// The same with the next 20 ms of a tone, times `volume` and clipped.
    void playTone(SineTone &tone, float volume);

    /// Fills the device's buffer.
    void mix(std::span<float> out) { m_mixer.mix(out); }

private:
    AudioStreamConfig m_config;
    OpusDecoder m_decoder;
    SineTone m_conflictTone;
    std::vector<float> m_toneFrame;
    OutputMixer m_mixer;
};

} // namespace tarvo::voice
