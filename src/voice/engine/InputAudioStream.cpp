#include "voice/engine/InputAudioStream.h"

#include "voice/engine/DeviceStream.h"
#include "voice/engine/Mailbox.h"
#include "voice/engine/SoundStream.h"
#include "voice/engine/SoundThread.h"
#include "voice/engine/VoiceCapture.h"

#include <optional>
#include <span>
#include <utility>

namespace tarvo::voice {

InputAudioStream::InputAudioStream(std::shared_ptr<SoundThread> sound, QObject *parent)
    : QObject(parent),
      m_sound(std::move(sound)),
      m_mailbox(std::make_shared<Mailbox>(this)),
      m_controls(std::make_shared<CaptureControls>())
{
    const auto open = [this, mailbox = m_mailbox, controls = m_controls](const AudioStreamConfig &config) {
        const auto capture = std::make_shared<VoiceCapture>(config, controls);
        return SoundStream::openInput(config, [this, mailbox, capture](std::span<const std::int16_t> samples) {
            if (std::optional<CapturedFrame> frame = capture->process(samples))
                mailbox->send([this, made = std::move(*frame)] { deliver(made); });
        });
    };
    m_stream = std::make_shared<DeviceStream>(StreamRole::Input, open, [] {});
}

InputAudioStream::~InputAudioStream()
{
    m_mailbox->close();
    stop();
}

void InputAudioStream::setDevice(int device)
{
    m_sound->post([stream = m_stream, device] { stream->setDevice(device); });
}

void InputAudioStream::start()
{
    m_sound->post([stream = m_stream] { stream->start(); });
}

void InputAudioStream::stop()
{
    m_sound->post([stream = m_stream] { stream->stop(); });
}

void InputAudioStream::setTransmitEnabled(bool enabled)
{
    m_controls->transmitEnabled = enabled;
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
