#include "voice/engine/VoiceCapture.h"

#include "voice/codec/AudioStreamConfig.h"
#include "voice/codec/CodecFormat.h"
#include "voice/codec/Resampler.h"
#include "voice/engine/Samples.h"

#include <utility>

namespace tarvo::voice {

VoiceCapture::VoiceCapture(const AudioStreamConfig &config, std::shared_ptr<const CaptureControls> controls)
    : m_controls(std::move(controls)),
      m_sampleRate(config.sampleRate),
      m_encoder(config),
      m_gained(static_cast<std::size_t>(config.framesPerBuffer)),
      m_floats(m_gained.size()),
      m_frame(static_cast<std::size_t>(m_encoder.samplesPerFrame()))
{
}

std::optional<CapturedFrame> VoiceCapture::process(std::span<const std::int16_t> samples)
{
    if (!m_controls->transmitEnabled)
        return std::nullopt;
    m_gained.resize(samples.size()); // the size that it has
    m_floats.resize(samples.size());
    amplify(samples, gainFactor(m_controls->micGainDb), m_gained);
    toFloat(m_gained, m_floats);
    const std::vector<float> resampled = resampleFloat(m_floats, m_sampleRate, codecSampleRate);
    if (resampled.empty())
        return std::nullopt;
    toInt16(resampled, m_frame);
    std::vector<std::uint8_t> opus = m_encoder.encode(m_frame.data(), codecFrameSize);
    if (opus.empty())
        return std::nullopt;
    return CapturedFrame{levelOf(m_gained), std::move(opus)};
}

} // namespace tarvo::voice
