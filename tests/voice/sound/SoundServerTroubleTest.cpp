#include "voice/sound/SoundStage.h"

#include "support/LogCapture.h"
#include "support/MainThreadWatch.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

using namespace tarvo::voice;
using namespace tarvo::test;

class SoundServerTroubleTest : public QObject
{
    Q_OBJECT

private slots:
    void deviceThatIsGone()
    {
        SoundStage stage;
        stage.server.plugSpeaker(false);
        {
            LogCapture log;
            QVERIFY(!stage.startAll());
            QVERIFY(log.contains(QStringLiteral("MixedOutputAudioStream: Pa_OpenStream failed: ")));
        }
        QVERIFY(stage.audio->headphoneStream().isRunning());
        stage.audio->stopAll();
        stage.server.plugSpeaker(true);
        QVERIFY(stage.startAll());
    }

    void deviceThatNeverWas()
    {
        SoundStage stage;
        LogCapture log;
        stage.audio->setInputDevice(1000);
        stage.audio->setHeadphoneDevice(1001);
        stage.audio->setSpeakerDevice(1002);
        QVERIFY(stage.startAll()); // with those of before
        QCOMPARE(log.texts(QtWarningMsg),
                 (QStringList{QStringLiteral("Input device change failed: invalid device 1000"),
                              QStringLiteral("Output(headphone) device change failed: invalid device 1001"),
                              QStringLiteral("Output(speaker) device change failed: invalid device 1002")}));
    }

    void killedServer()
    {
        SoundStage stage;
        QVERIFY(stage.startAll());
        LogCapture log;
        stage.server.kill();
        TRY_COMPARE(log.texts(QtWarningMsg).filter(QStringLiteral("the sound system has ended the stream")).size(), 3);
        stage.audio->stopAll();
        QVERIFY(!stage.startAll());
        QVERIFY(log.contains(QStringLiteral("InputAudioStream: Pa_OpenStream failed: ")));
        QVERIFY(stage.server.start());
        QVERIFY(stage.startAll());
        QSignalSpy packets(&*stage.audio, &AudioHandler::encodedAudioReady);
        stage.audio->setPttActive(true);
        TRY_VERIFY(!packets.isEmpty());
    }

    void startBringsBackWhatAKilledServerEnded()
    {
        SoundStage stage;
        QVERIFY(stage.startAll());
        LogCapture log;
        stage.server.kill();
        TRY_COMPARE(log.texts(QtWarningMsg).filter(QStringLiteral("the sound system has ended the stream")).size(), 3);
        QVERIFY(stage.server.start());
        QSignalSpy packets(&*stage.audio, &AudioHandler::encodedAudioReady);
        stage.audio->setPttActive(true);
        QVERIFY(stage.startAll()); // without a stop
        TRY_VERIFY(!packets.isEmpty());
    }

    void stoppedServerHoldsNobody()
    {
        SoundStage stage;
        QVERIFY(stage.startAll());
        stage.server.freeze();
        MainThreadWatch watch;
        LogCapture log;
        bool isTried = false;
        stage.audio->stopAll();
        stage.audio->setInputDevice(-1);
        stage.audio->startAll([&isTried] { isTried = true; });
        stage.audio->playPttTone(true);
        TRY_VERIFY(log.contains(QStringLiteral("The sound system hasn't answered for 0.3 s")));
        QVERIFY(!isTried);
        VERIFY_NO_STANDSTILL(watch);
        stage.audio->stopAll();
        stage.audio->startAll({});
        stage.server.thaw();
        TRY_VERIFY(isTried);
        TRY_VERIFY(stage.audio->headphoneStream().isRunning());
    }

    void endDoesNotWaitForAStoppedServer()
    {
        SoundStage stage;
        QVERIFY(stage.startAll());
        LogCapture log;
        stage.server.freeze();
        QElapsedTimer time;
        time.start();
        stage.audio.reset();
        QVERIFY(time.elapsed() < 200);
        stage.sound.reset();
        const qint64 wholeMs = time.elapsed();
        QVERIFY2(wholeMs < 3000, qPrintable(QString::number(wholeMs)));
        QVERIFY(log.contains(QStringLiteral("Thread \"sound\" is left behind")));
        stage.server.thaw();
        TRY_VERIFY(log.contains(QStringLiteral("InputAudioStream: stopped"))); // the one task that had begun
    }
};

TARVO_TEST(SoundServerTroubleTest)
#include "SoundServerTroubleTest.moc"
