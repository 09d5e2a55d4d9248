#pragma once

#include <QtGlobal>

#include <cstdint>
#include <memory>
#include <vector>

struct OpusEncoder; // libopus's

namespace tarvo::voice {

struct AudioStreamConfig;

/// Makes an Opus packet of 20 ms of sound at 48 kHz. One thread at a time.
class OpusEncoder
{
public:
    /// As reset().
    explicit OpusEncoder(const AudioStreamConfig &config);

    /// Begins anew with the configuration's channels. When libopus refuses, the log tells, and nothing can be encoded.
    void reset(const AudioStreamConfig &config);

    qint32 channels() const { return m_channels; }
    /// Of all channels together.
    qint32 samplesPerFrame() const;

    /// `pcm`: `frameSize` samples of each channel, interleaved. Empty when that can't be encoded.
    std::vector<std::uint8_t> encode(const std::int16_t *pcm, int frameSize);

private:
    struct Destroy
    {
        void operator()(::OpusEncoder *handle) const;
    };

    std::unique_ptr<::OpusEncoder, Destroy> m_handle;
    qint32 m_channels = 1;
};

} // namespace tarvo::voice
