#include "voice/sound/Hearing.h"
#include "voice/sound/SoundStage.h"

#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "voice/engine/Samples.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace tarvo::voice;
using namespace tarvo::test;

namespace {

// The devices offer 44100 Hz, at which the tones have these periods.
constexpr double pressPitch = 44100.0 / 29;
constexpr double releasePitch = 44100.0 / 44;
constexpr double conflictPitch = 44100.0 / 150;

} // namespace

class HeardSoundTest : public QObject
{
    Q_OBJECT

private slots:
    void micTestPlaysTheMicrophone_data()
    {
        QTest::addColumn<bool>("speaker");
        QTest::newRow("headphone") << false;
        QTest::newRow("speaker") << true;
    }

    void micTestPlaysTheMicrophone()
    {
        QFETCH(bool, speaker);
        SoundStage stage;
        QSignalSpy packets(&*stage.audio, &AudioHandler::encodedAudioReady);
        stage.audio->startMicTest(speaker);
        stage.audio->setPttActive(true);
        TRY_VERIFY(packets.size() > 3);
        SoundRecorder recorder(stage.server, speaker ? "spk_b" : "spk_a");
        SoundRecorder other(stage.server, speaker ? "spk_a" : "spk_b");
        TRY_VERIFY(!recorder.samples().empty());
        const std::vector<float> said = chirp(2);
        const SoundPlayer player(stage.server, said);
        TRY_VERIFY(recorder.samples().size() > 4 * soundRate);
        const std::vector<double> found = likeness(said, recorder.samples());
        qInfo("The microphone and what is heard of it: correlation %.3f, of the worst quarter second %.3f",
              found[found.size() / 2], found.front());
        // On a busy machine half of the pieces may have a gap.
        const double undisturbed = found[found.size() * 3 / 4];
        QVERIFY2(undisturbed > 0.8, qPrintable(QString::number(undisturbed)));
        QVERIFY(tarvo::voice::levelOf(other.samples()).db < -90);
    }

    void closedGateKeepsTheMicTestSilent()
    {
        SoundStage stage;
        QSignalSpy packets(&*stage.audio, &AudioHandler::encodedAudioReady);
        stage.audio->startMicTest(false);
        TRY_VERIFY(stage.audio->headphoneStream().isRunning());
        SoundRecorder recorder(stage.server, "spk_a");
        const SoundPlayer player(stage.server, chirp(1));
        TRY_VERIFY(recorder.samples().size() > soundRate);
        QVERIFY(tarvo::voice::levelOf(recorder.samples()).db < -90);
        QVERIFY(packets.isEmpty());
    }

    void keyClicksAtItsPitches_data()
    {
        QTest::addColumn<bool>("speaker");
        QTest::newRow("headphone") << false;
        QTest::newRow("speaker") << true;
    }

    void keyClicksAtItsPitches()
    {
        QFETCH(bool, speaker);
        SoundStage stage;
        stage.config.set(tarvo::config::voicePttPlayDevice, speaker ? 1 : 0);
        QVERIFY(stage.startAll());
        SoundRecorder recorder(stage.server, speaker ? "spk_b" : "spk_a");
        TRY_VERIFY(!recorder.samples().empty());
        stage.audio->playPttTone(true);
        QVERIFY(hears(recorder, pressPitch, 0.13));
        QVERIFY(loudestTone(recorder.samples(), releasePitch) < 0.05);
        stage.audio->playPttTone(false);
        QVERIFY(hears(recorder, releasePitch, 0.13));
        // 20 ms each of 0.15: no more than that was heard.
        double energy = 0;
        for (const float sample : recorder.samples())
            energy += static_cast<double>(sample) * sample;
        const double seconds = energy / (0.15 * 0.15 / 2) / soundRate;
        QVERIFY2(std::abs(seconds - 0.040) < 0.002, qPrintable(QString::number(seconds)));
    }

    void conflictBuzzes()
    {
        SoundStage stage;
        QVERIFY(stage.startAll());
        SoundRecorder recorder(stage.server, "spk_a");
        TRY_VERIFY(!recorder.samples().empty());
        for (int i = 0; i < 10; ++i)
            stage.audio->playVoice({.receive = true}, {}, true);
        QVERIFY(hears(recorder, conflictPitch, 0.27));
        QVERIFY(loudestTone(recorder.samples(), 2 * conflictPitch) < 0.05);
    }

    void conflictTestBuzzesUntilItIsStopped()
    {
        SoundStage stage;
        stage.config.set(tarvo::config::voiceConflictPlayDevice, 1);
        stage.config.set(tarvo::config::voiceConflictVolume, 0.5);
        stage.audio->startConflictTest();
        SoundRecorder recorder(stage.server, "spk_b");
        QVERIFY(hears(recorder, conflictPitch, 0.13));
        stage.audio->stopConflictTest();
        TRY_VERIFY(!stage.audio->speakerStream().isRunning());
    }

    void headphoneAndSpeakerGetWhatIsTheirs()
    {
        SoundStage stage;
        const Transmitter ofHeadphone{.id = 0, .receive = true};
        const Transmitter ofSpeaker{.id = 1, .receive = true, .useSpeaker = true};
        stage.audio->addChannel(ofHeadphone);
        stage.audio->addChannel(ofSpeaker);
        QVERIFY(stage.startAll());
        SoundRecorder headphone(stage.server, "spk_a");
        SoundRecorder speaker(stage.server, "spk_b");
        TRY_VERIFY(!headphone.samples().empty() && !speaker.samples().empty());
        for (const auto &packet : packetsOf(sine(500, 0.4, 0.5F)))
            stage.audio->playVoice(ofHeadphone, packet, false);
        for (const auto &packet : packetsOf(sine(800, 0.4, 0.5F)))
            stage.audio->playVoice(ofSpeaker, packet, false);
        QVERIFY(hears(headphone, 500, 0.3));
        QVERIFY(hears(speaker, 800, 0.3));
        QVERIFY(loudestTone(headphone.samples(), 800) < 0.05);
        QVERIFY(loudestTone(speaker.samples(), 500) < 0.05);
    }

    void channelsAreThereAgainAfterEveryStart_data()
    {
        QTest::addColumn<bool>("byDevice");
        QTest::newRow("stopped and started") << false;
        QTest::newRow("another device") << true;
    }

    void channelsAreThereAgainAfterEveryStart()
    {
        QFETCH(bool, byDevice);
        SoundStage stage;
        const Transmitter radio{.id = 1, .receive = true};
        stage.audio->addChannel(radio);
        QVERIFY(stage.startAll());
        if (byDevice)
            stage.audio->setHeadphoneDevice(stage.device("spk_b"));
        else
            stage.audio->stopAll();
        TRY_VERIFY(!stage.audio->headphoneStream().isRunning());
        QVERIFY(stage.startAll());
        SoundRecorder recorder(stage.server, byDevice ? "spk_b" : "spk_a");
        TRY_VERIFY(!recorder.samples().empty());
        TRY_VERIFY(stage.audio->headphoneStream().isRunning());
        for (const auto &packet : packetsOf(sine(500, 0.4, 0.5F)))
            stage.audio->playVoice(radio, packet, false);
        QVERIFY(hears(recorder, 500, 0.3));
    }

    void anotherDriverRestartsEachStreamOnce()
    {
        SoundStage stage;
        QVERIFY(stage.startAll());
        const int microphone = stage.device("default");
        const int headphone = stage.device("spk_b");
        const int speaker = stage.device("spk_a");
        LogCapture log;
        stage.audio->setInputDevice(microphone);
        stage.audio->setHeadphoneDevice(headphone);
        stage.audio->setSpeakerDevice(speaker);
        QVERIFY(stage.startAll());
        const QStringList texts = log.texts(QtDebugMsg);
        QCOMPARE(texts.count(QStringLiteral("InputAudioStream: started")), 1);
        QCOMPARE(texts.count(QStringLiteral("MixedOutputAudioStream: started")), 2);
    }

    void microphoneCanBeExchangedWhileItIsOpen()
    {
        SoundStage stage;
        QSignalSpy packets(&*stage.audio, &AudioHandler::encodedAudioReady);
        stage.audio->setPttActive(true);
        QVERIFY(stage.startAll());
        TRY_VERIFY(!packets.isEmpty());
        LogCapture log;
        stage.audio->setInputDevice(-1);
        TRY_VERIFY(log.contains(QStringLiteral("Input device change to default, 2 channels")));
        TRY_VERIFY(log.contains(QStringLiteral("InputAudioStream: started")));
        packets.clear();
        TRY_VERIFY(packets.size() > 3);
    }
};

TARVO_TEST(HeardSoundTest)
#include "HeardSoundTest.moc"
