#include "voice/engine/AudioHandler.h"

#include "AppConfig.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "voice/engine/LoudPacket.h"
#include "voice/engine/SoundThread.h"
#include "voice/engine/VoiceCapture.h"
#include "voice/engine/VoicePlayback.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <future>
#include <limits>
#include <optional>

using namespace tarvo;
using namespace tarvo::voice;
using tarvo::test::loudPacket;

namespace {

/// An engine whose outputs play into memory. Its sound thread is held from the beginning, so that no device is touched.
struct EngineStage
{
    EngineStage()
    {
        sound->post([held = end.get_future().share()] { held.wait(); });
        audio.emplace(config, sound);
        audio->headphoneStream().setPlayback(headphone);
        audio->speakerStream().setPlayback(speaker);
    }
    ~EngineStage()
    {
        audio.reset();
        sound->clear();
        end.set_value();
    }

    QTemporaryDir folder;
    AppConfig config{folder.path()};
    std::promise<void> end;
    std::shared_ptr<SoundThread> sound = std::make_shared<SoundThread>();
    std::optional<AudioHandler> audio;
    std::shared_ptr<VoicePlayback> headphone = std::make_shared<VoicePlayback>(AudioStreamConfig{});
    std::shared_ptr<VoicePlayback> speaker = std::make_shared<VoicePlayback>(
        AudioStreamConfig{.sampleRate = 48000, .channels = 1, .framesPerBuffer = 960, .device = {}});
};

std::vector<float> heardOf(VoicePlayback &playback)
{
    std::vector<float> out(static_cast<std::size_t>(playback.config().framesPerBuffer));
    playback.mix(out);
    return out;
}

float peak(VoicePlayback &playback)
{
    const std::vector<float> out = heardOf(playback);
    return std::abs(
        *std::max_element(out.begin(), out.end(), [](float a, float b) { return std::abs(a) < std::abs(b); }));
}

/// Samples between the first two moments at which it rises through 0; its period.
int periodOf(const std::vector<float> &samples)
{
    std::vector<int> rises;
    for (std::size_t i = 1; i < samples.size(); ++i) {
        if (samples[i - 1] <= 0 && samples[i] > 0)
            rises.push_back(static_cast<int>(i));
    }
    return rises.size() < 2 ? 0 : rises[1] - rises[0];
}

} // namespace

class AudioHandlerTest : public QObject
{
    Q_OBJECT

private slots:
    void voice_data()
    {
        QTest::addColumn<bool>("receive");
        QTest::addColumn<float>("volume");
        QTest::addColumn<bool>("useSpeaker");
        QTest::addColumn<bool>("conflict");
        QTest::addColumn<bool>("conflictOnSpeaker");
        QTest::addColumn<bool>("inHeadphone");
        QTest::addColumn<bool>("inSpeaker");
        QTest::addColumn<bool>("metered");
        QTest::newRow("headphone") << true << 1.0F << false << false << false << true << false << true;
        QTest::newRow("speaker") << true << 1.0F << true << false << false << false << true << true;
        QTest::newRow("volume 0") << true << 0.0F << false << false << false << false << false << false;
        QTest::newRow("not received") << false << 1.0F << false << false << false << false << false << false;
        QTest::newRow("conflict") << true << 1.0F << true << true << false << true << false << false;
        QTest::newRow("conflict on speaker") << true << 1.0F << false << true << true << false << true << false;
        QTest::newRow("conflict at volume 0") << true << 0.0F << false << true << false << false << false << false;
        QTest::newRow("conflict, not received") << false << 1.0F << false << true << false << false << false << false;
    }

    void voice()
    {
        QFETCH(bool, receive);
        QFETCH(float, volume);
        QFETCH(bool, useSpeaker);
        QFETCH(bool, conflict);
        QFETCH(bool, conflictOnSpeaker);
        EngineStage stage;
        stage.config.set(config::voiceConflictPlayDevice, conflictOnSpeaker ? 1 : 0);
        QSignalSpy meter(&*stage.audio, &AudioHandler::outputVolumeChanged);
        const Transmitter radio{.id = 1, .receive = receive, .volume = volume, .useSpeaker = useSpeaker};
        stage.audio->addChannel(radio);
        stage.audio->playVoice(radio, loudPacket(), conflict);
        QTEST(peak(*stage.headphone) > 0.1F, "inHeadphone");
        QTEST(peak(*stage.speaker) > 0.1F, "inSpeaker");
        QTEST(!meter.isEmpty(), "metered");
    }

    void volumeOfTheRadio()
    {
        EngineStage stage;
        const Transmitter loud{.id = 0, .receive = true};
        const Transmitter quiet{.id = 1, .receive = true, .volume = 0.25F, .useSpeaker = true};
        stage.audio->addChannel(loud);
        stage.audio->addChannel(quiet);
        stage.audio->playVoice(loud, loudPacket(), false);
        stage.audio->playVoice(quiet, loudPacket(), false);
        const float whole = std::atanh(peak(*stage.headphone));
        const float quarter = std::atanh(peak(*stage.speaker));
        QVERIFY2(std::abs(quarter - whole / 4) < 0.02F, qPrintable(QStringLiteral("%1 %2").arg(quarter).arg(whole)));
    }

    void conflictVolume()
    {
        EngineStage stage;
        const Transmitter radio{.receive = true};
        for (const double volume : {1.0, 0.5, 0.0}) {
            stage.config.set(config::voiceConflictVolume, volume);
            stage.audio->playVoice(radio, {}, true);
            QVERIFY(std::abs(peak(*stage.headphone) - 0.3F * static_cast<float>(volume)) < 0.001F);
        }
    }

    void channelsFollowTheirRadio()
    {
        EngineStage stage;
        Transmitter radio{.id = 1, .receive = true};
        stage.audio->playVoice(radio, loudPacket(), false);
        QCOMPARE(peak(*stage.headphone), 0.0F); // there is none yet
        stage.audio->addChannel(radio);
        stage.audio->playVoice(radio, loudPacket(), false);
        QVERIFY(peak(*stage.headphone) > 0.1F);
        stage.audio->playVoice(radio, loudPacket(), false);
        radio.useSpeaker = true;
        stage.audio->routeChannel(radio);
        QCOMPARE(peak(*stage.headphone), 0.0F); // what was to come there is lost
        stage.audio->playVoice(radio, loudPacket(), false);
        QVERIFY(peak(*stage.speaker) > 0.1F);
        stage.audio->removeChannel(1);
        stage.audio->playVoice(radio, loudPacket(), false);
        QCOMPARE(peak(*stage.speaker), 0.0F);
    }

    void openedStreamHasTheChannels()
    {
        EngineStage stage;
        stage.audio->headphoneStream().setPlayback(nullptr);
        const Transmitter radio{.id = 1, .receive = true};
        stage.audio->addChannel(radio);
        stage.audio->playVoice(radio, loudPacket(), false);
        for (int i = 0; i < 2; ++i) { // also a second time, as after another device's choice
            const auto opened = std::make_shared<VoicePlayback>(AudioStreamConfig{});
            stage.audio->headphoneStream().setPlayback(opened);
            QCOMPARE(peak(*opened), 0.0F);
            stage.audio->playVoice(radio, loudPacket(), false);
            QVERIFY(peak(*opened) > 0.1F);
        }
    }

    void click_data()
    {
        QTest::addColumn<bool>("pressed");
        QTest::addColumn<bool>("onSpeaker");
        QTest::addColumn<int>("period");
        QTest::newRow("pressed, 44100 Hz") << true << false << 29;
        QTest::newRow("released, 44100 Hz") << false << false << 44;
        QTest::newRow("pressed, 48000 Hz") << true << true << 32;
        QTest::newRow("released, 48000 Hz") << false << true << 48;
    }

    void click()
    {
        QFETCH(bool, pressed);
        QFETCH(bool, onSpeaker);
        EngineStage stage;
        stage.config.set(config::voicePttPlayDevice, onSpeaker ? 7 : 0); // anything but 0
        stage.audio->playPttTone(pressed);
        QTEST(periodOf(heardOf(onSpeaker ? *stage.speaker : *stage.headphone)), "period");
        QCOMPARE(peak(*stage.headphone), 0.0F); // 20 ms, and nowhere else
        QCOMPARE(peak(*stage.speaker), 0.0F);
    }

    void clickFollowsTheSettings()
    {
        EngineStage stage;
        stage.config.set(config::voicePttPressFreq, 441.0);
        stage.config.set(config::voicePttReleaseFreq, 882.0);
        stage.audio->playPttTone(true);
        QCOMPARE(periodOf(heardOf(*stage.headphone)), 100);
        stage.audio->playPttTone(false);
        QCOMPARE(periodOf(heardOf(*stage.headphone)), 50);
        for (const double volume : {1.0, 0.5, 0.0}) {
            stage.config.set(config::voicePttVolume, volume);
            stage.audio->playPttTone(true);
            QVERIFY(std::abs(peak(*stage.headphone) - 0.15F * static_cast<float>(volume)) < 0.001F);
        }
    }

    void clickWithoutItsOutput()
    {
        EngineStage stage;
        stage.audio->headphoneStream().setPlayback(nullptr);
        stage.audio->playPttTone(true);
        QCOMPARE(peak(*stage.speaker), 0.0F);
    }

    void micGain_data()
    {
        QTest::addColumn<double>("stored");
        QTest::addColumn<int>("gain");
        QTest::newRow("cut") << 5.9 << 5;
        QTest::newRow("cut towards 0") << -5.9 << -5;
        QTest::newRow("absurd") << 1e300 << 200;
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 0;
    }

    void micGain()
    {
        QFETCH(double, stored);
        EngineStage stage;
        QCOMPARE(stage.audio->inputStream().controls().micGainDb.load(), 0);
        stage.config.set(config::voiceMicGain, stored);
        QTEST(stage.audio->inputStream().controls().micGainDb.load(), "gain");
    }

    void otherSettingsChangeNothing()
    {
        EngineStage stage;
        stage.config.set(config::voiceMicGain, 6.0);
        stage.audio->inputStream().setMicGain(3);
        stage.config.set(config::profileRealname, QStringLiteral("Somebody"));
        stage.config.set(config::voicePttVolume, 0.5);
        QCOMPARE(stage.audio->inputStream().controls().micGainDb.load(), 3);
        stage.audio->reloadConfig();
        QCOMPARE(stage.audio->inputStream().controls().micGainDb.load(), 6);
    }

    void gate()
    {
        EngineStage stage;
        const CaptureControls &controls = stage.audio->inputStream().controls();
        QVERIFY(!controls.transmitEnabled);
        stage.audio->setPttActive(true);
        QVERIFY(controls.transmitEnabled);
        stage.audio->setPttActive(false);
        QVERIFY(!controls.transmitEnabled);
    }

    void capturedFrameIsMeteredThenSent()
    {
        EngineStage stage;
        QStringList order;
        QObject::connect(&*stage.audio, &AudioHandler::inputVolumeChanged, &*stage.audio,
                         [&](common::VolumeInfo volume) { order.append(QString::number(volume.percent)); });
        QObject::connect(&*stage.audio, &AudioHandler::encodedAudioReady, &*stage.audio,
                         [&](const std::vector<std::uint8_t> &bytes) { order.append(QString::number(bytes.size())); });
        stage.audio->inputStream().deliver({.volume = {-6, 93}, .opus = {1, 2, 3}});
        QCOMPARE(order, (QStringList{QStringLiteral("93"), QStringLiteral("3")}));
    }
};

TARVO_TEST(AudioHandlerTest)
#include "AudioHandlerTest.moc"
