#include "voice/VoiceUnderTest.h"

#include "AppConfig.h"
#include "voice/client/VoiceClient.h"
#include "voice/engine/AudioHandler.h"
#include "voice/engine/DeviceStreams.h"
#include "voice/engine/SoundSystem.h"
#include "voice/engine/SoundThread.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QStringList>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace tarvo::bench {

namespace {

constexpr voice::StreamRole roles[] = {voice::StreamRole::Input, voice::StreamRole::Headphone,
                                       voice::StreamRole::Speaker};

/// Runs the event loop until nobody writes to standard input any more.
void runUntilInputEnds()
{
    QSocketNotifier input(fileno(stdin), QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, &QCoreApplication::quit);
    QCoreApplication::exec();
}

void tellOfStreams(QtMsgType, const QMessageLogContext &, const QString &text)
{
    if (text.contains(QLatin1StringView(" buffers, ")) || text.contains(QLatin1StringView(": latency ")))
        std::printf("%s\n", qPrintable(text));
}

} // namespace

int runOpenDevices()
{
    using namespace voice;
    const auto sound = std::make_shared<SoundThread>();
    DeviceStreams streams(portAudio(), [] {});
    DeviceStreams::Wishes wishes;
    for (const StreamRole role : roles) {
        const auto make = [](const AudioStreamConfig &) {
            return DeviceStreams::Sound{
                .calls = {.capture = [](std::span<const std::int16_t>) {},
                          .play = [](std::span<float> out) { std::fill(out.begin(), out.end(), 0.0F); },
                          .ended = {}},
                .started = [] {}};
        };
        streams.connect(role, make, [] {});
        wishes[static_cast<std::size_t>(role)] = {.isOpen = true, .device = -1};
    }
    const SoundSession session;
    streams.fulfil(wishes, Opening::Wanted);
    std::printf("ready\n");
    std::fflush(stdout);
    runUntilInputEnds();
    streams.fulfil({}, Opening::None);
    return 0;
}

int runVoiceClient(const QStringList &words)
{
    using namespace voice;
    qInstallMessageHandler(&tellOfStreams);
    const QTemporaryDir folder;
    AppConfig config(folder.path());
    const auto sound = std::make_shared<SoundThread>();
    ServiceEndpoints endpoints;
    endpoints.voiceHost = QStringLiteral("127.0.0.1");
    endpoints.voiceTcpPort = words.value(0).toUShort();
    endpoints.voiceUdpPort = words.value(1).toUShort();
    {
        VoiceClient client(config, sound, endpoints);
        client.setCid(words.value(3).toUInt());
        client.audioHandler()->setInputDevice(-1);
        client.audioHandler()->setHeadphoneDevice(-1);
        client.audioHandler()->setSpeakerDevice(-1);
        QObject::connect(&client, &VoiceClient::connectionStateChanged, &client, [&](ConnectionState state) {
            if (state != ConnectionState::Ready)
                return;
            client.updateTransmitter(
                {.id = 0, .frequency = words.value(2).toUInt(), .transmit = true, .receive = true, .volume = 1});
            client.setPtt(words.value(5) == QLatin1StringView("talk"));
            std::printf("ready\n");
            std::fflush(stdout);
        });
        client.connectToServer(words.value(4));
        runUntilInputEnds();
    }
    sound->waitUntilIdle(std::chrono::seconds(5));
    return 0;
}

} // namespace tarvo::bench
