#pragma once

#include "common/DropCount.h"
#include <QtGlobal>

#include <cstdint>
#include <memory>
#include <vector>

struct OpusDecoder; // libopus's

namespace tarvo::voice {

struct AudioStreamConfig;

/// Makes sound at 48 kHz of Opus packets. One thread at a time.
class OpusDecoder
{
public:
    /// As reset().
    explicit OpusDecoder(const AudioStreamConfig &config);

    /// Begins anew with the configuration's channels. When libopus refuses, the log tells, and nothing can be decoded.
    void reset(const AudioStreamConfig &config);

    qint32 channels() const { return m_channels; }
    /// Of all channels together.
    qint32 samplesPerFrame() const;

    /// The packet's samples, interleaved, -1 to 1. Empty for what is no packet, or one of more than 20 ms.
    std::vector<float> decode(const std::uint8_t *data, int size);

private:
    struct Destroy
    {
        void operator()(::OpusDecoder *handle) const;
    };

    void tellError(int error);

    std::unique_ptr<::OpusDecoder, Destroy> m_handle;
    common::DropCount m_errors;
    qint32 m_channels = 1;
};

} // namespace tarvo::voice
