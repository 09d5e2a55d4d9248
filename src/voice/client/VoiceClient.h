#pragma once

#include "ServiceEndpoints.h"
#include "common/Clock.h"
#include "common/DropCount.h"
#include "common/VolumeInfo.h"
#include "common/Worker.h"
#include "voice/client/ConnectionState.h"
#include "voice/client/Speakers.h"
#include "voice/client/TransmitterTable.h"
#include "voice/transport/NetworkHandler.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarvo {
class AppConfig;
}

namespace tarvo::voice {

class AudioHandler;
class SoundThread;

/// The voice session: tells the server how the radios are tuned, sends what the microphone gives while the key is held,
/// and lets be heard what comes in. Main thread only; nothing here waits for the network or for a sound system.
class VoiceClient : public QObject
{
    Q_OBJECT

public:
    /// `config` and `clock` must outlive it. `sound`: the thread of the program's sound system.
    VoiceClient(AppConfig &config, std::shared_ptr<SoundThread> sound, const ServiceEndpoints &endpoints = {},
                const common::Clock &clock = common::systemClock(), QObject *parent = nullptr);
    ~VoiceClient() override;

    /// The network user's numeric id; 0: unknown.
    void setCid(quint32 cid);

    /// Starts a connection, unless one is being tried. `token`: the account's. A failure is raised as an error and
    /// leaves the state at Connecting.
    void connectToServer(const QString &token);
    /// Ends the session or the attempt, and forgets the radios.
    void disconnectFromServer();

    ConnectionState state() const { return m_state; }
    /// Connected, greeted by name, and known by number.
    bool isReady() const;
    /// As the server has greeted this client; raw bytes, UTF-8.
    const std::string &callsign() const { return m_callsign; }
    /// The radio that voice goes out on; nothing until one has transmitted.
    std::optional<quint32> currentTransmitter() const { return m_currentTransmitter; }

    /// The audio engine; made when it is first asked for.
    AudioHandler *audioHandler();
    /// What its maker needs to list devices.
    std::shared_ptr<SoundThread> soundThread() const { return m_sound; }

    /// Makes a radio known. One that is tuned is told to the server like an update.
    void addTransmitter(const Transmitter &transmitter);
    /// Tells the server how a radio is tuned now. Nothing until isReady().
    void updateTransmitter(const Transmitter &transmitter);

    /// The push-to-talk key is held, or no longer.
    void setPtt(bool active);

    /// Sends a text to the voice server; nothing until isReady(). No page offers this yet.
    void sendMessage(const QString &first, const QString &second);

signals:
    void connectionStateChanged(tarvo::voice::ConnectionState state);
    /// A text for the pilot, the server's or a failed connection's.
    void errorOccurred(const QString &error);
    /// A frame of 20 ms goes out.
    void voiceDataSent(const tarvo::common::VolumeInfo &inputVolume);
    /// A packet on a tuned frequency has come, heard or not. `freq`: kHz.
    void voiceDataReceived(const QString &callsign, int freq, const tarvo::common::VolumeInfo &outputVolume);
    /// The frequency that voice goes out on from now, in kHz.
    void currentFrequencyChanged(int frequency);
    void audioHandlerCreated(tarvo::voice::AudioHandler *audio);

private:
    void setState(ConnectionState state);
    void onError(const QString &error);
    void onSocketState(bool connected);
    void onControlMessage(const ControlMessage &message);
    void onServerError(const QString &error);
    void onMessage(const std::string &data);
    void onServerDisconnect();
    void startAudio();
    void onAudioStarted(quint64 session);
    void onVoicePacket(const VoicePacket &packet);
    void sendVoice(const std::vector<std::uint8_t> &opus);
    void sendChannel(const Transmitter &transmitter);

    AppConfig &m_config;
    const std::shared_ptr<SoundThread> m_sound;
    const common::Clock &m_clock;

    ConnectionState m_state = ConnectionState::Disconnected;
    quint32 m_cid = 0;
    std::string m_callsign;
    QString m_token; ///< of the last attempt; never logged
    common::DropCount m_serverErrors;
    NetworkHandler m_network;
    common::Worker m_connecting{"voice connect", 1};
    bool m_isTrying = false;   ///< an attempt is under way
    quint64 m_session = 0;     ///< counts the connections
    bool m_isStarting = false; ///< the streams of this connection are being opened

    TransmitterTable m_transmitters;
    Speakers m_speakers;
    std::optional<quint32> m_currentTransmitter; ///< the id that voice goes out on
    bool m_pttActive = false;
    common::VolumeInfo m_inputVolume;      ///< of the frame that was captured last
    common::VolumeInfo m_outputVolume;     ///< of the frame that was played last
    std::unique_ptr<AudioHandler> m_audio; ///< null until it is needed
};

} // namespace tarvo::voice
