#include "voice/engine/AudioHandler.h"

#include "AppConfig.h"
#include "voice/engine/AudioDevice.h"
#include "voice/engine/Tones.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace tarvo::voice {

namespace {

constexpr std::chrono::milliseconds frameTime{20};
constexpr int testChannel = 0; // of the mic test

// What a hand-edited file may hold is no number; nothing is played with it.
float finite(double value)
{
    return std::isfinite(value) ? static_cast<float>(value) : 0.0F;
}

StreamRole outputRole(bool speaker)
{
    return speaker ? StreamRole::Speaker : StreamRole::Headphone;
}

} // namespace

/// A setting that the engine follows.
struct AudioHandler::Setting
{
    const char *key;
    void (*read)(AudioHandler &handler, const AppConfig &config);
};

const AudioHandler::Setting AudioHandler::settings[] = {
    {config::voiceMicGain.key, [](AudioHandler &h, const AppConfig &c) { h.setMicGain(c.get(config::voiceMicGain)); }},
    {config::voicePttPressFreq.key,
     [](AudioHandler &h, const AppConfig &c) {
         h.m_pttPressTone.setFrequency(finite(c.get(config::voicePttPressFreq)));
     }},
    {config::voicePttReleaseFreq.key,
     [](AudioHandler &h, const AppConfig &c) {
         h.m_pttReleaseTone.setFrequency(finite(c.get(config::voicePttReleaseFreq)));
     }},
    {config::voicePttVolume.key,
     [](AudioHandler &h, const AppConfig &c) { h.m_pttVolume = finite(c.get(config::voicePttVolume)); }},
    {config::voicePttPlayDevice.key,
     [](AudioHandler &h, const AppConfig &c) { h.m_pttPlayDevice = c.get(config::voicePttPlayDevice) != 0; }},
    {config::voiceConflictPlayDevice.key,
     [](AudioHandler &h, const AppConfig &c) { h.setConflictPlayDevice(c.get(config::voiceConflictPlayDevice) != 0); }},
    {config::voiceConflictVolume.key,
     [](AudioHandler &h, const AppConfig &c) { h.m_conflictVolume = finite(c.get(config::voiceConflictVolume)); }},
};

AudioHandler::AudioHandler(AppConfig &config, std::shared_ptr<SoundThread> sound, QObject *parent, SoundAccess access)
    : QObject(parent),
      m_config(config),
      m_devices(std::move(sound), std::move(access), this),
      m_inputStream(m_devices.streams()),
      m_headphoneStream(StreamRole::Headphone, m_devices.streams()),
      m_speakerStream(StreamRole::Speaker, m_devices.streams()),
      m_pttPressTone(usualToneRate, static_cast<float>(config::voicePttPressFreq.defaultValue), toneAmplitude),
      m_pttReleaseTone(usualToneRate, static_cast<float>(config::voicePttReleaseFreq.defaultValue), toneAmplitude),
      m_conflictTone(usualToneRate, conflictFrequency, toneAmplitude)
{
    connect(&m_inputStream, &InputAudioStream::encodedAudioReady, this, &AudioHandler::encodedAudioReady);
    connect(&m_inputStream, &InputAudioStream::inputVolumeChanged, this, &AudioHandler::inputVolumeChanged);
    for (const MixedOutputAudioStream *stream : {&m_headphoneStream, &m_speakerStream})
        connect(stream, &MixedOutputAudioStream::outputVolumeChanged, this, &AudioHandler::outputVolumeChanged);
    connect(&m_config, &AppConfig::configChanged, this, &AudioHandler::onConfigChanged);
    connect(&m_devices, &DeviceWishes::happened, this, &AudioHandler::deviceEvent);
    connect(&m_devices, &DeviceWishes::devicesChanged, this, &AudioHandler::devicesChanged);
    m_conflictTimer.setObjectName(QStringLiteral("conflict"));
    m_conflictTimer.setTimerType(Qt::PreciseTimer);
    m_conflictTimer.setInterval(frameTime);
    // 44100 Hz whatever the device's rate: the test's pitch is its own.
    connect(&m_conflictTimer, &QTimer::timeout, this,
            [this] { output(m_conflictPlayDevice).playTone(m_conflictTone, m_conflictVolume); });
    reloadConfig();
}

void AudioHandler::follow(AudioDevice &chosen)
{
    connect(&chosen, &AudioDevice::missed, this, [this](bool isAny) { m_devices.setMissed(isAny); });
    connect(&chosen, &AudioDevice::inputDeviceChanged, this, &AudioHandler::setInputDevice);
    connect(&chosen, &AudioDevice::outputHeadphoneDeviceChanged, this, &AudioHandler::setHeadphoneDevice);
    connect(&chosen, &AudioDevice::outputSpeakerDeviceChanged, this, &AudioHandler::setSpeakerDevice);
    connect(this, &AudioHandler::devicesChanged, &chosen, &AudioDevice::reload);
    if (chosen.isLoaded()) {
        chosen.announceChosen();
        return;
    }
    // The first sound must not come from a device that the pilot has not chosen.
    waitForDevices();
    connect(&chosen, &AudioDevice::loaded, this, &AudioHandler::stopWaitingForDevices);
    chosen.load();
}

void AudioHandler::reloadConfig()
{
    for (const Setting &setting : settings)
        setting.read(*this, m_config);
}

void AudioHandler::onConfigChanged(const QString &key)
{
    const auto *const setting = std::find_if(std::begin(settings), std::end(settings),
                                             [&key](const Setting &one) { return key == QLatin1String(one.key); });
    if (setting != std::end(settings))
        setting->read(*this, m_config);
}

void AudioHandler::setMicGain(double db)
{
    constexpr double most = 200; // twice what 16 bits can tell apart; a hand-edited file may hold anything
    m_inputStream.setMicGain(static_cast<int>(std::clamp(double(finite(db)), -most, most)));
}

void AudioHandler::setConflictPlayDevice(bool speaker)
{
    if (speaker == std::exchange(m_conflictPlayDevice, speaker) || !m_conflictTimer.isActive())
        return;
    stop({outputRole(!speaker)}); // the test moves over
    start({outputRole(speaker)});
}

void AudioHandler::setPttActive(bool active)
{
    m_inputStream.setTransmitEnabled(active);
}

void AudioHandler::playPttTone(bool pressed)
{
    MixedOutputAudioStream &stream = output(m_pttPlayDevice);
    SineTone &tone = pressed ? m_pttPressTone : m_pttReleaseTone;
    if (stream.isRunning() && tone.sampleRate() != stream.sampleRate())
        tone.setSampleRate(stream.sampleRate());
    stream.playTone(tone, m_pttVolume * 0.5F);
}

void AudioHandler::startAll(std::function<void()> whenTried)
{
    start({StreamRole::Input, StreamRole::Headphone, StreamRole::Speaker}, std::move(whenTried));
}

void AudioHandler::stopAll()
{
    stop({StreamRole::Input, StreamRole::Headphone, StreamRole::Speaker});
}

void AudioHandler::start(const DeviceWishes::Roles &roles, std::function<void()> whenTried)
{
    for (const Transmitter &transmitter : std::as_const(m_transmitters))
        output(transmitter.useSpeaker).addChannel(static_cast<int>(transmitter.id)); // which every stop forgets
    m_devices.start(roles, std::move(whenTried));
}

void AudioHandler::stop(const DeviceWishes::Roles &roles)
{
    for (const StreamRole role : roles) {
        if (role != StreamRole::Input)
            output(role == StreamRole::Speaker).forgetChannels();
    }
    m_devices.stop(roles);
}

void AudioHandler::addChannel(const Transmitter &transmitter)
{
    m_transmitters.insert(transmitter.id, transmitter);
    output(transmitter.useSpeaker).addChannel(static_cast<int>(transmitter.id));
}

void AudioHandler::removeChannel(int id)
{
    m_transmitters.remove(static_cast<quint32>(id));
    m_headphoneStream.removeChannel(id);
    m_speakerStream.removeChannel(id);
}

void AudioHandler::routeChannel(const Transmitter &transmitter)
{
    output(!transmitter.useSpeaker).removeChannel(static_cast<int>(transmitter.id));
    addChannel(transmitter);
}

void AudioHandler::playVoice(const Transmitter &transmitter, const std::vector<std::uint8_t> &opus, bool conflict)
{
    if (transmitter.volume == 0 || !transmitter.receive)
        return;
    const bool speaker = conflict ? m_conflictPlayDevice : transmitter.useSpeaker;
    const float volume = conflict ? m_conflictVolume : transmitter.volume;
    output(speaker).playPacket(static_cast<int>(transmitter.id), opus, conflict, volume);
}

void AudioHandler::startConflictTest()
{
    m_conflictTimer.start();
    start({StreamRole::Input, outputRole(m_conflictPlayDevice)});
    m_micTesting = true;
}

void AudioHandler::stopConflictTest()
{
    // m_micTesting stays: the next mic test cleans up.
    m_conflictTimer.stop();
    stop({StreamRole::Input, outputRole(m_conflictPlayDevice)});
}

void AudioHandler::startMicTest(bool loopbackTarget)
{
    stopMicTest();
    m_loopbackTarget = loopbackTarget;
    MixedOutputAudioStream &target = output(loopbackTarget);
    m_loopbackConnection =
        connect(&m_inputStream, &InputAudioStream::encodedAudioReady, &target,
                [&target](const std::vector<std::uint8_t> &opus) { target.playPacket(testChannel, opus, false, 1); });
    target.addChannel(testChannel);
    start({StreamRole::Input, outputRole(loopbackTarget)});
    m_micTesting = true;
}

void AudioHandler::stopMicTest()
{
    if (!m_micTesting)
        return;
    disconnect(m_loopbackConnection);
    output(m_loopbackTarget).removeChannel(testChannel);
    stop({StreamRole::Input, outputRole(m_loopbackTarget)});
    m_micTesting = false;
}

} // namespace tarvo::voice
