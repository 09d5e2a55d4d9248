#pragma once

#include "AppConfig.h"
#include "support/ManualClock.h"
#include "support/NoSound.h"
#include "support/Patience.h"
#include "support/VoicePeer.h"
#include "voice/client/VoiceClient.h"
#include "voice/engine/AudioHandler.h"
#include "voice/engine/SoundThread.h"
#include "voice/engine/VoicePlayback.h"
#include "voice/wire/VoicePacket.h"

#include <QStringList>
#include <QTemporaryDir>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarvo::test {

inline const QString voiceToken = QStringLiteral("header.payload.signature");

/// A voice session with its server. Notes what the client raises.
struct SessionStage
{
    explicit SessionStage(std::optional<ServiceEndpoints> endpoints = {})
    {
        using voice::VoiceClient;
        leaveSoundAlone();
        client = std::make_unique<VoiceClient>(config, std::make_shared<voice::SoundThread>(),
                                               endpoints.value_or(peer.endpoints()), clock);
        QObject *context = client.get();
        QObject::connect(client.get(), &VoiceClient::connectionStateChanged, context,
                         [this](voice::ConnectionState state) { events.append(textOf(state)); });
        QObject::connect(client.get(), &VoiceClient::errorOccurred, context,
                         [this](const QString &error) { events.append(u"error: "_qs + error); });
        QObject::connect(client.get(), &VoiceClient::voiceDataReceived, context,
                         [this](const QString &who, int freq) { events.append(u"%1 on %2"_qs.arg(who).arg(freq)); });
        QObject::connect(client.get(), &VoiceClient::currentFrequencyChanged, context,
                         [this](int freq) { events.append(u"speaks on %1"_qs.arg(freq)); });
        QObject::connect(client.get(), &VoiceClient::voiceDataSent, context,
                         [this](common::VolumeInfo volume) { events.append(u"sent at %1"_qs.arg(volume.percent)); });
        QObject::connect(client.get(), &VoiceClient::audioHandlerCreated, context,
                         [this] { events.append(u"audio"_qs); });
    }

    static QString textOf(voice::ConnectionState state)
    {
        constexpr const char *names[] = {"Disconnected", "Connecting", "Connected", "Authenticating", "Ready"};
        return QString::fromLatin1(names[static_cast<int>(state)]);
    }

    /// True once the server knows of the client, and its token and first datagram have been taken.
    bool connectToServer()
    {
        client->connectToServer(voiceToken);
        return waitFor([this] { return client->state() == voice::ConnectionState::Connected; }) &&
               peer.expect(voiceToken.toUtf8()) && !peer.nextDatagram().isNull();
    }
    void greet(const QByteArray &callsign = "CCA1234") { say("message", "SERVER:" + callsign + ":Welcome"); }
    /// A control line of the server.
    void say(const QByteArray &type, const QByteArray &data = {})
    {
        peer.inject(R"({"type":")" + type + R"(","data":")" + data + "\"}");
    }
    bool waitForState(voice::ConnectionState state)
    {
        return waitFor([this, state] { return client->state() == state; });
    }
    /// A session in which all can be said and heard.
    bool makeReady(quint32 cid = 1001)
    {
        client->setCid(cid);
        if (!connectToServer())
            return false;
        greet();
        if (!waitForState(voice::ConnectionState::Ready))
            return false;
        events.clear();
        return true;
    }
    /// True when the server has got nothing up to now but what was taken.
    bool hasSaidNothing()
    {
        events.clear();
        client->disconnectFromServer();
        const QByteArray rest = peer.untilClosed();
        return rest.count('\n') == 1 && rest.contains("\"disconnect\"");
    }

    void hear(const std::string &callsign, int frequency)
    {
        const auto bytes = voice::serializeVoicePacket(7, 0, frequency, callsign, {'v'});
        peer.sendDatagram(QByteArray(reinterpret_cast<const char *>(bytes.data()), qsizetype(bytes.size())));
    }

    VoicePeer peer;
    QTemporaryDir folder;
    AppConfig config{folder.path()};
    ManualClock clock;
    QStringList events;
    std::unique_ptr<voice::VoiceClient> client;
};

/// The headphone of a session, listened to: what the packets of a test hold is no voice, so that it is silent unless it
/// buzzes.
class Headphone
{
public:
    explicit Headphone(SessionStage &stage)
        : m_playback(std::make_shared<voice::VoicePlayback>(voice::AudioStreamConfig{}))
    {
        m_playback->addChannel(0);
        m_playback->addChannel(1);
        stage.client->audioHandler()->headphoneStream().setPlayback(m_playback);
    }

    /// Whether the next 20 ms hold a sound.
    bool sounds()
    {
        std::vector<float> frame(static_cast<std::size_t>(m_playback->config().framesPerBuffer));
        m_playback->mix(frame);
        return std::any_of(frame.begin(), frame.end(), [](float sample) { return sample != 0; });
    }

private:
    std::shared_ptr<voice::VoicePlayback> m_playback;
};

inline constexpr voice::Transmitter com1{.id = 0, .frequency = 118500, .transmit = true, .receive = true, .volume = 1};
inline constexpr voice::Transmitter com2{.id = 1, .frequency = 121500, .transmit = false, .receive = true, .volume = 1};

} // namespace tarvo::test
