#include "voice/engine/InputAudioStream.h"

#include "voice/engine/DeviceStreams.h"
#include "voice/engine/Mailbox.h"
#include "voice/engine/VoiceCapture.h"

#include <optional>
#include <span>
#include <utility>

namespace tarvo::voice {

InputAudioStream::InputAudioStream(DeviceStreams &streams, QObject *parent)
    : QObject(parent), m_mailbox(std::make_shared<Mailbox>(this)), m_controls(std::make_shared<CaptureControls>())
{
    const auto make = [this, mailbox = m_mailbox, controls = m_controls](const AudioStreamConfig &config) {
        const auto capture = std::make_shared<VoiceCapture>(config, controls);
        DeviceStreams::Sound sound{.calls = {}, .started = [] {}};
        sound.calls.capture = [this, mailbox, capture](std::span<const std::int16_t> samples) {
            if (std::optional<CapturedFrame> frame = capture->process(samples))
                mailbox->send([this, made = std::move(*frame)] { deliver(made); });
        };
        return sound;
    };
    streams.connect(StreamRole::Input, make, [] {});
}

InputAudioStream::~InputAudioStream()
{
    m_mailbox->close();
}

void InputAudioStream::setTransmitEnabled(bool enabled)
{
    m_controls->transmitEnabled = enabled;
}

bool InputAudioStream::isTransmitEnabled() const
{
    return m_controls->transmitEnabled;
}

void InputAudioStream::setMicGain(int db)
{
    m_controls->micGainDb = db;
}

void InputAudioStream::deliver(const CapturedFrame &frame)
{
    emit inputVolumeChanged(frame.volume);
    emit encodedAudioReady(frame.opus);
}

} // namespace tarvo::voice
