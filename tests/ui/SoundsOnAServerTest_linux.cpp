#include "ui/MediaSoundOutput.h"
#include "ui/SoundPlayer.h"

#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "ui/Sounds.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QFileInfo>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <atomic>
#include <memory>
#include <utility>

using tarvo::test::connectSound;
using tarvo::test::messageSound;
using tarvo::ui::MediaSoundOutput;
using tarvo::ui::SoundPlayer;

namespace {

/// A sound server of this program's own, with one speaker that nobody hears.
class SoundServer
{
public:
    ~SoundServer()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }

    /// From then on Qt finds it; to be called before it has looked for one.
    void start()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *folder : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
            environment.insert(QString::fromLatin1(folder), m_folder.path());
        m_process.setProcessEnvironment(environment);
        m_process.start(u"pulseaudio"_qs,
                        {u"-n"_qs, u"--daemonize=no"_qs, u"--use-pid-file=no"_qs, u"--exit-idle-time=-1"_qs,
                         u"--disable-shm=yes"_qs, u"--realtime=no"_qs, u"--high-priority=no"_qs, u"-L"_qs,
                         u"module-native-protocol-unix auth-anonymous=1 auth-cookie-enabled=0 socket="_qs + socket(),
                         u"-L"_qs, u"module-null-sink sink_name=speaker norewinds=1 rate=48000 channels=2"_qs});
        TRY_VERIFY(QFileInfo::exists(socket()));
        qputenv("PULSE_SERVER", "unix:" + socket().toLocal8Bit());
    }

private:
    QString socket() const { return m_folder.filePath(u"native"_qs); }

    QTemporaryDir m_folder;
    QProcess m_process;
};

/// What the media player tells of, in order.
class Diary : public QObject
{
public:
    explicit Diary(const QMediaPlayer &player)
    {
        connect(player.audioOutput(), &QAudioOutput::volumeChanged, this,
                [this](float volume) { m_lines << u"volume %1"_qs.arg(volume); });
        connect(&player, &QMediaPlayer::sourceChanged, this,
                [this](const QUrl &url) { m_lines << u"source "_qs + url.fileName(); });
        connect(&player, &QMediaPlayer::playbackStateChanged, this,
                [this](QMediaPlayer::PlaybackState state) { m_lines << QVariant::fromValue(state).toString(); });
    }

    QStringList takeLines() { return std::exchange(m_lines, {}); }

private:
    QStringList m_lines;
};

} // namespace

class SoundsOnAServerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_server.start();
        TRY_VERIFY(!QMediaDevices::defaultAudioOutput().isNull());
    }

    void beginsAnew()
    {
        MediaSoundOutput output;
        const QMediaPlayer &player = output.player();
        Diary diary(player);

        output.begin(connectSound, 0.55F);
        QCOMPARE(diary.takeLines(), (QStringList{u"volume 0.55"_qs, u"source connect.mp3"_qs, u"PlayingState"_qs}));
        TRY_VERIFY(player.position() > 0);
        output.begin(connectSound, 0.75F); // while it plays
        QCOMPARE(player.position(), 0);
        QCOMPARE(diary.takeLines(), (QStringList{u"volume 0.75"_qs, u"StoppedState"_qs, u"PlayingState"_qs}));
        output.begin(messageSound, 0.75F);
        QCOMPARE(diary.takeLines(), (QStringList{u"StoppedState"_qs, u"source manager.mp3"_qs, u"PlayingState"_qs}));
    }

    void aPlayerGoesWhileItIsHeard()
    {
        std::atomic<int> made = 0;
        for (int i = 1; i <= 5; ++i) {
            SoundPlayer player([&made] {
                ++made;
                return std::make_unique<MediaSoundOutput>();
            });
            player.play(connectSound, 0.55F);
            TRY_COMPARE(made.load(), i); // the sound before has gone from the thread that they share
            player.play(messageSound, 0.55F);
        }
    }

private:
    SoundServer m_server;
};

TARVO_TEST(SoundsOnAServerTest)
#include "SoundsOnAServerTest_linux.moc"
