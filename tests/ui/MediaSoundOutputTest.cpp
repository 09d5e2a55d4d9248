#include "ui/MediaSoundOutput.h"

#include "support/TestRegistry.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <QTest>
#include <QUrl>

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
        output.begin(QUrl(u"qrc:/resources/sounds/connect.mp3"_qs), 0.55F);
        QCOMPARE(output.player().source(), QUrl());
        QCOMPARE(output.player().playbackState(), QMediaPlayer::StoppedState);
    }
};

TARVO_TEST(MediaSoundOutputTest)
#include "MediaSoundOutputTest.moc"
