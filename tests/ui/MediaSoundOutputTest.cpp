#include "ui/MediaSoundOutput.h"

#include "support/TestRegistry.h"

#include <QAudioOutput>
#include <QMediaPlayer>
#include <QTest>
#include <QUrl>

#include <utility>

using tarvo::ui::MediaSoundOutput;

namespace {

/// What the media player tells of, in order.
class Diary : public QObject
{
public:
    explicit Diary(const QMediaPlayer &player)
    {
        connect(player.audioOutput(), &QAudioOutput::volumeChanged, this,
                [this](float volume) { m_lines << QStringLiteral("volume %1").arg(volume); });
        connect(&player, &QMediaPlayer::sourceChanged, this,
                [this](const QUrl &url) { m_lines << QStringLiteral("source ") + url.fileName(); });
        connect(&player, &QMediaPlayer::playbackStateChanged, this,
                [this](QMediaPlayer::PlaybackState state) { m_lines << QVariant::fromValue(state).toString(); });
    }

    QStringList takeLines() { return std::exchange(m_lines, {}); }

private:
    QStringList m_lines;
};

} // namespace

class MediaSoundOutputTest : public QObject
{
    Q_OBJECT

private slots:
    void beginsAnew()
    {
        const QUrl connectSound(u"qrc:/resources/sounds/connect.mp3"_qs);
        const QUrl messageSound(u"qrc:/resources/sounds/manager.mp3"_qs);
        MediaSoundOutput output;
        const QMediaPlayer &player = output.player();
        Diary diary(player);

        output.begin(connectSound, 0.55F);
        QCOMPARE(diary.takeLines(), (QStringList{u"volume 0.55"_qs, u"source connect.mp3"_qs, u"PlayingState"_qs}));
        QTRY_VERIFY(player.position() > 0);
        output.begin(connectSound, 0.75F); // while it plays
        QCOMPARE(player.position(), 0);
        QCOMPARE(diary.takeLines(), (QStringList{u"volume 0.75"_qs, u"StoppedState"_qs, u"PlayingState"_qs}));
        output.begin(messageSound, 0.75F);
        QCOMPARE(diary.takeLines(), (QStringList{u"StoppedState"_qs, u"source manager.mp3"_qs, u"PlayingState"_qs}));
    }
};

TARVO_TEST(MediaSoundOutputTest)
#include "MediaSoundOutputTest.moc"
