#include "voice/engine/InputAudioStream.h"

#include "voice/engine/DeviceStreams.h"
#include "voice/engine/Mailbox.h"
#include "voice/engine/VoiceCapture.h"

#include <atomic>
#include <optional>
#include <span>
#include <utility>

namespace tarvo::voice {

namespace {

/// As many as a receiver keeps: 640 ms. Behind a pause of the main thread older speech would only come late.
constexpr int mostWaiting = 32;

} // namespace

InputAudioStream::InputAudioStream(DeviceStreams &streams, QObject *parent)
    : QObject(parent), m_mailbox(std::make_shared<Mailbox>(this)), m_controls(std::make_shared<CaptureControls>())
{
    const auto make = [this, mailbox = m_mailbox, controls = m_controls](const AudioStreamConfig &config) {
        const auto capture = std::make_shared<VoiceCapture>(config, controls);
        const auto waiting = std::make_shared<std::atomic<int>>(0); // frames in the mailbox
        DeviceStreams::Sound sound{.calls = {}, .started = [] {}};
        sound.calls.capture = [this, mailbox, capture, waiting](std::span<const std::int16_t> samples) {
            std::optional<CapturedFrame> frame = capture->process(samples);
            if (!frame || *waiting >= mostWaiting) // the new one is dropped
                return;
            ++*waiting;
            mailbox->send([this, waiting, made = std::move(*frame)] {
                --*waiting;
                deliver(made);
            });
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
