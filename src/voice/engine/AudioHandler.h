#pragma once

#include "common/VolumeInfo.h"
#include "voice/engine/DeviceWishes.h"
#include "voice/engine/InputAudioStream.h"
#include "voice/engine/MixedOutputAudioStream.h"
#include "voice/engine/SineTone.h"
#include "voice/engine/Transmitter.h"

#include <QHash>
#include <QMetaObject>
#include <QObject>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tarvo {
class AppConfig;
} // namespace tarvo

namespace tarvo::voice {

class AudioDevice;
class SoundThread;

/// The audio engine: the microphone, two outputs, and what goes where. Follows the voice settings live. Everything
/// returns at once: what is asked of the devices are wishes (DeviceWishes).
class AudioHandler : public QObject
{
    Q_OBJECT

public:
    /// `config` outlives the engine.
    AudioHandler(AppConfig &config, std::shared_ptr<SoundThread> sound, QObject *parent = nullptr,
                 SoundAccess access = portAudio());

    /// Uses those that the pilot has chosen; what opens a stream waits until they are known.
    void follow(AudioDevice &chosen);
    /// The pilot's devices are not known yet.
    void waitForDevices() { m_devices.wait(); }
    void stopWaitingForDevices() { m_devices.stopWaiting(); }

    // PortAudio's indices; negative: the default device. A stream that is open goes on with the new one.
    void setInputDevice(int device) { m_devices.setDevice(StreamRole::Input, device); }
    void setHeadphoneDevice(int device) { m_devices.setDevice(StreamRole::Headphone, device); }
    void setSpeakerDevice(int device) { m_devices.setDevice(StreamRole::Speaker, device); }

    /// Reads all that the engine uses of the settings.
    void reloadConfig();

    /// The push-to-talk gate, which rules the tests too. Any thread.
    void setPttActive(bool active);
    /// The click of the key, 20 ms, if its output is open.
    void playPttTone(bool pressed);

    /// Opens the three streams. `whenTried` is called on this object's thread when that has been tried.
    void startAll(std::function<void()> whenTried = {});
    void stopAll();

    // The radios that are heard; remembered over the streams' ends.
    void addChannel(const Transmitter &transmitter);
    void removeChannel(int id);
    /// Moves it to the output that it names.
    void routeChannel(const Transmitter &transmitter);

    /// Plays what came for a radio. With `conflict` a buzz instead of it, where the settings want that.
    void playVoice(const Transmitter &transmitter, const std::vector<std::uint8_t> &opus, bool conflict);

    /// Buzzes until it is stopped.
    void startConflictTest();
    void stopConflictTest();
    /// Plays the microphone, through encoder and decoder, on the speaker (`loopbackTarget`) or the headphone.
    void startMicTest(bool loopbackTarget);
    void stopMicTest();

    // For tests.
    InputAudioStream &inputStream() { return m_inputStream; }
    MixedOutputAudioStream &headphoneStream() { return m_headphoneStream; }
    MixedOutputAudioStream &speakerStream() { return m_speakerStream; }

signals:
    void encodedAudioReady(std::vector<uint8_t> data);
    void inputVolumeChanged(tarvo::common::VolumeInfo volume);
    void outputVolumeChanged(tarvo::common::VolumeInfo volume);
    void deviceEvent(tarvo::voice::DeviceEvent event, const std::vector<tarvo::voice::StreamRole> &roles);
    /// The sound system offers others than before: the pilot's have to be set again.
    void devicesChanged();

private:
    struct Setting;
    static const Setting settings[];

    void onConfigChanged(const QString &key);
    void setMicGain(double db);
    void setConflictPlayDevice(bool speaker);
    MixedOutputAudioStream &output(bool speaker) { return speaker ? m_speakerStream : m_headphoneStream; }
    void start(const DeviceWishes::Roles &roles, std::function<void()> whenTried = {});
    void stop(const DeviceWishes::Roles &roles);

    AppConfig &m_config;
    DeviceWishes m_devices;
    InputAudioStream m_inputStream;
    MixedOutputAudioStream m_headphoneStream;
    MixedOutputAudioStream m_speakerStream;
    QHash<quint32, Transmitter> m_transmitters;

    SineTone m_pttPressTone;
    SineTone m_pttReleaseTone;
    SineTone m_conflictTone;
    float m_pttVolume = 0.5F;
    float m_conflictVolume = 0.5F;
    bool m_pttPlayDevice = false;      ///< the speaker clicks
    bool m_conflictPlayDevice = false; ///< the speaker buzzes

    bool m_micTesting = false;
    bool m_loopbackTarget = false; ///< the speaker plays the microphone
    QMetaObject::Connection m_loopbackConnection;
    QTimer m_conflictTimer{this};
};

} // namespace tarvo::voice
