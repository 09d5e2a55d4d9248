#include "ui/SoundPlayer.h"

#include "support/TestRegistry.h"

#include <QFile>
#include <QMediaPlayer>
#include <QSignalSpy>
#include <QTest>

using tarvo::ui::SoundPlayer;

class SoundPlayerTest : public QObject
{
    Q_OBJECT

private slots:
    void takesSourceAndVolume()
    {
        SoundPlayer player;
        const QSignalSpy played(&player, &SoundPlayer::played);
        const QUrl connectSound(u"qrc:/resources/sounds/connect.mp3"_qs);
        const QUrl disconnectSound(u"qrc:/resources/sounds/disconnect.mp3"_qs);

        player.play(connectSound, 0.55F);
        QCOMPARE(player.source(), connectSound);
        QCOMPARE(player.volume(), 0.55F);
        player.play(connectSound, 0.75F); // again, while it may be playing
        QCOMPARE(player.volume(), 0.75F);
        player.play(disconnectSound, 0.55F);
        QCOMPARE(player.source(), disconnectSound);
        QCOMPARE(played.size(), 3);
    }

    void beginsAnew()
    {
        SoundPlayer sounds;
        const auto *player = sounds.findChild<QMediaPlayer *>();
        QVERIFY(player);
        const QSignalSpy sources(player, &QMediaPlayer::sourceChanged);
        QStringList states;
        connect(player, &QMediaPlayer::playbackStateChanged, this,
                [&states](QMediaPlayer::PlaybackState state) { states << QVariant::fromValue(state).toString(); });
        const QUrl sound(u"qrc:/resources/sounds/connect.mp3"_qs);
        sounds.play(sound, 0.55F);
        QTRY_VERIFY(player->position() > 0);
        QCOMPARE(states, QStringList{u"PlayingState"_qs});
        sounds.play(sound, 0.55F);
        QCOMPARE(player->position(), 0);
        QCOMPARE(states, (QStringList{u"PlayingState"_qs, u"StoppedState"_qs, u"PlayingState"_qs}));
        QCOMPARE(sources.size(), 1);
    }

    void theSoundsAreBuiltIn_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("connect") << u":/resources/sounds/connect.mp3"_qs;
        QTest::newRow("message") << u":/resources/sounds/manager.mp3"_qs;
        QTest::newRow("disconnect") << u":/resources/sounds/disconnect.mp3"_qs;
    }
    void theSoundsAreBuiltIn()
    {
        QFETCH(QString, path);
        QVERIFY(QFile(path).size() > 0);
    }
};

TARVO_TEST(SoundPlayerTest)
#include "SoundPlayerTest.moc"
