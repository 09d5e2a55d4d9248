#pragma once

#include "common/VolumeInfo.h"
#include "voice/codec/OpusEncoder.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tarvo::voice {

struct AudioStreamConfig;

/// What the pilot sets while the microphone is open. Any thread.
struct CaptureControls
{
    std::atomic<bool> transmitEnabled = false; ///< the push-to-talk gate
    std::atomic<int> micGainDb = 0;
};

/// 20 ms of what the pilot said.
struct CapturedFrame
{
    common::VolumeInfo volume; ///< behind the gain
    std::vector<std::uint8_t> opus;
};

/// Makes Opus packets of a microphone's buffers, in memory that is taken at its start.
class VoiceCapture
{
public:
    VoiceCapture(const AudioStreamConfig &config, std::shared_ptr<const CaptureControls> controls);

    /// A buffer of interleaved samples. Nothing while the gate is closed, and when they can't be encoded. One thread.
    std::optional<CapturedFrame> process(std::span<const std::int16_t> samples);

private:
    std::shared_ptr<const CaptureControls> m_controls;
    int m_sampleRate;
    OpusEncoder m_encoder;
    std::vector<std::int16_t> m_gained;
    std::vector<float> m_floats;
    std::vector<std::int16_t> m_frame; ///< for the encoder
};

} // namespace tarvo::voice
