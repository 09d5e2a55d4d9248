#include "voice/codec/OpusDecoder.h"

#include "common/Clock.h"
#include "voice/codec/AudioStreamConfig.h"
#include "voice/codec/CodecFormat.h"

#include <QDebug>

#include <opus/opus.h>

#include <algorithm>

namespace tarvo::voice {

void OpusDecoder::Destroy::operator()(::OpusDecoder *handle) const
{
    opus_decoder_destroy(handle);
}

OpusDecoder::OpusDecoder(const AudioStreamConfig &config)
{
    reset(config);
}

void OpusDecoder::reset(const AudioStreamConfig &config)
{
    m_channels = config.channels;
    int error = OPUS_OK;
    m_handle.reset(opus_decoder_create(codecSampleRate, m_channels, &error));
    if (!m_handle)
        qWarning() << "OpusDecoder: failed to create decoder:" << opus_strerror(error);
}

qint32 OpusDecoder::samplesPerFrame() const
{
    return m_channels * codecFrameSize;
}

/// Anybody on a tuned frequency can send fifty of these a second, or thousands.
void OpusDecoder::tellError(int error)
{
    if (m_errors.add(common::systemClock().steadyMs()) != common::DropCount::Line::None)
        qWarning() << "OpusDecoder: decode error:" << opus_strerror(error);
}

std::vector<float> OpusDecoder::decode(const std::uint8_t *data, int size)
{
    if (size <= 0 || !data || !m_handle)
        return {};
    std::vector<opus_int16> pcm(static_cast<std::size_t>(samplesPerFrame()));
    const int decoded = opus_decode(m_handle.get(), data, size, pcm.data(), codecFrameSize, 0);
    if (decoded < 0) {
        tellError(decoded);
        return {};
    }
    std::vector<float> samples(static_cast<std::size_t>(decoded * m_channels));
    std::transform(pcm.begin(), pcm.begin() + static_cast<std::ptrdiff_t>(samples.size()), samples.begin(),
                   [](opus_int16 sample) { return static_cast<float>(sample) * int16ToFloat; });
    return samples;
}

} // namespace tarvo::voice
