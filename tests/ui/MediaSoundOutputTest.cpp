#include "ui/MediaSoundOutput.h"

#include "support/TestRegistry.h"
#include "ui/Sounds.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <QTest>

using tarvo::ui::MediaSoundOutput;

/// On a machine without a sound device, as the test program makes every machine look.
class MediaSoundOutputTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingBeginsWithoutADevice()
    {
        QVERIFY(QMediaDevices::defaultAudioOutput().isNull());
        MediaSoundOutput output;
        output.begin(tarvo::test::connectSound, 0.55F);
        QCOMPARE(output.player().source(), QUrl());
        QVERIFY(output.player().audioOutput()); // without one it would play in silence
        QCOMPARE(output.player().playbackState(), QMediaPlayer::StoppedState);
    }
};

TARVO_TEST(MediaSoundOutputTest)
#include "MediaSoundOutputTest.moc"
