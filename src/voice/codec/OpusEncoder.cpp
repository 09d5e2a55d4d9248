#include "voice/codec/OpusEncoder.h"

#include "voice/codec/AudioStreamConfig.h"
#include "voice/codec/CodecFormat.h"

#include <QDebug>

#include <opus/opus.h>

namespace tarvo::voice {

namespace {

constexpr int bitrate = 24000; // bits per second
constexpr int maximumPacketSize = 4000;

} // namespace

void OpusEncoder::Destroy::operator()(::OpusEncoder *handle) const
{
    opus_encoder_destroy(handle);
}

OpusEncoder::OpusEncoder(const AudioStreamConfig &config)
{
    reset(config);
}

void OpusEncoder::reset(const AudioStreamConfig &config)
{
    m_channels = config.channels;
    int error = OPUS_OK;
    m_handle.reset(opus_encoder_create(codecSampleRate, m_channels, OPUS_APPLICATION_VOIP, &error));
    if (m_handle)
        opus_encoder_ctl(m_handle.get(), OPUS_SET_BITRATE(bitrate));
    else
        qWarning() << "OpusEncoder: failed to create encoder:" << opus_strerror(error);
}

qint32 OpusEncoder::samplesPerFrame() const
{
    return m_channels * codecFrameSize;
}

std::vector<std::uint8_t> OpusEncoder::encode(const std::int16_t *pcm, int frameSize)
{
    if (!pcm || !m_handle)
        return {};
    std::vector<std::uint8_t> packet(maximumPacketSize);
    const opus_int32 size = opus_encode(m_handle.get(), pcm, frameSize, packet.data(), maximumPacketSize);
    if (size < 0) {
        qWarning() << "OpusEncoder: encode error:" << opus_strerror(size);
        return {};
    }
    packet.resize(static_cast<std::size_t>(size));
    return packet;
}

} // namespace tarvo::voice
