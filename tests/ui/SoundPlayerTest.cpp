#include "ui/SoundPlayer.h"

#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "ui/Sounds.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

using namespace std::chrono_literals;
using tarvo::test::connectSound;
using tarvo::test::disconnectSound;
using tarvo::test::messageSound;
using tarvo::ui::SoundOutput;
using tarvo::ui::SoundPlayer;

namespace {

/// A sound system that may be kept from returning, and what it was asked to do. Its outputs go after their player, and
/// keep it that long.
class SoundSystem : public std::enable_shared_from_this<SoundSystem>
{
public:
    void hold() { set(true); }
    void release() { set(false); }

    /// Called by the sounds' thread.
    void take(const QString &step)
    {
        std::unique_lock lock(m_mutex);
        m_steps.push_back(step);
        m_threads.insert(QThread::currentThread());
        if (!m_wake.wait_for(lock, 30s, [this] { return !m_held; }))
            m_steps.push_back(u"nobody released it"_qs);
    }

    QStringList steps() const
    {
        const std::lock_guard lock(m_mutex);
        return {m_steps.begin(), m_steps.end()};
    }
    std::set<const QThread *> threads() const
    {
        const std::lock_guard lock(m_mutex);
        return m_threads;
    }

    SoundOutput::Factory factory()
    {
        return [self = shared_from_this()] { return std::make_unique<Output>(self); };
    }

private:
    class Output : public SoundOutput
    {
    public:
        explicit Output(std::shared_ptr<SoundSystem> system) : m_system(std::move(system))
        {
            m_system->take(u"made"_qs);
        }
        Output(const Output &) = delete;
        Output &operator=(const Output &) = delete;
        ~Output() override { m_system->take(u"gone"_qs); }

        void begin(const QUrl &url, float volume) override
        {
            m_system->take(u"%1 %2"_qs.arg(url.fileName()).arg(volume));
        }

    private:
        std::shared_ptr<SoundSystem> m_system;
    };

    void set(bool held)
    {
        const std::lock_guard lock(m_mutex);
        m_held = held;
        m_wake.notify_all();
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_held = false;
    std::vector<QString> m_steps; // no QStringList: a copy would share its elements with the sounds' thread
    std::set<const QThread *> m_threads;
};

} // namespace

class SoundPlayerTest : public QObject
{
    Q_OBJECT

private slots:
    void takesSourceAndVolume()
    {
        SoundPlayer player;
        const QSignalSpy played(&player, &SoundPlayer::played);
        player.play(connectSound, 0.55F);
        QCOMPARE(player.source(), connectSound);
        QCOMPARE(player.volume(), 0.55F);
        player.play(connectSound, 0.75F); // again, while it may be playing
        QCOMPARE(player.volume(), 0.75F);
        player.play(disconnectSound, 0.55F);
        QCOMPARE(player.source(), disconnectSound);
        QCOMPARE(played.size(), 3);
        QCOMPARE(played[2], QVariantList{disconnectSound});
    }

    void theLevelIsAShareOfEachVolume()
    {
        SoundPlayer player;
        const QSignalSpy wanted(&player, &SoundPlayer::wanted);
        const QSignalSpy played(&player, &SoundPlayer::played);
        player.setLevel(0.5F);
        player.play(connectSound, 0.5F);
        QCOMPARE(player.volume(), 0.25F);
        player.setLevel(0.0F);
        player.play(messageSound, 0.5F);
        player.setLevel(1.0F);
        player.setOn(false);
        player.play(disconnectSound, 0.5F);
        QCOMPARE(player.source(), connectSound); // the others were not heard
        QCOMPARE(played.size(), 1);
        QCOMPARE(wanted.size(), 3);
        QCOMPARE(wanted[2], QVariantList{disconnectSound});
    }

    void withoutASoundNothingIsOpened()
    {
        const auto system = std::make_shared<SoundSystem>();
        {
            const SoundPlayer player(system->factory());
        }
        SoundPlayer next(system->factory()); // a step of the first would have come before these
        next.play(connectSound, 0.55F);
        TRY_COMPARE(system->steps(), (QStringList{u"made"_qs, u"connect.mp3 0.55"_qs}));
    }

    void aBurstIsNotQueued()
    {
        const auto system = std::make_shared<SoundSystem>();
        system->hold();
        SoundPlayer player(system->factory());
        const auto burst = [&player](const QUrl &newest) {
            for (int i = 0; i < 100; ++i)
                player.play(disconnectSound, 0.55F);
            player.play(newest, 0.75F);
        };
        burst(connectSound); // while the output is being made
        TRY_COMPARE(system->steps(), QStringList{u"made"_qs});
        burst(connectSound);
        system->release();
        TRY_COMPARE(system->steps(), (QStringList{u"made"_qs, u"connect.mp3 0.75"_qs}));

        system->hold();
        player.play(connectSound, 0.55F);
        TRY_COMPARE(system->steps().size(), 3); // it has begun and does not return
        burst(messageSound);
        QCOMPARE(player.source(), messageSound);
        QCOMPARE(player.volume(), 0.75F);
        system->release();
        TRY_COMPARE(system->steps().size(), 4);
        player.play(disconnectSound, 0.55F);
        TRY_COMPARE(system->steps(), (QStringList{u"made"_qs, u"connect.mp3 0.75"_qs, u"connect.mp3 0.55"_qs,
                                                  u"manager.mp3 0.75"_qs, u"disconnect.mp3 0.55"_qs}));
    }

    void switchedOffItIsSilent()
    {
        const auto system = std::make_shared<SoundSystem>();
        SoundPlayer player(system->factory());
        player.setOn(false);
        player.play(messageSound, 0.75F);
        QVERIFY(player.source().isEmpty());
        player.setOn(true);
        player.play(connectSound, 0.55F);
        TRY_COMPARE(system->steps(), (QStringList{u"made"_qs, u"connect.mp3 0.55"_qs}));
    }

    void allPlayersShareOneThread()
    {
        const auto system = std::make_shared<SoundSystem>();
        for (int i = 0; i < 2; ++i) {
            SoundPlayer player(system->factory());
            player.play(connectSound, 0.55F);
            TRY_COMPARE(system->steps().size(), 3 * i + 2);
        }
        TRY_COMPARE(system->steps().size(), 6);
        QCOMPARE(system->steps().last(), u"gone"_qs);
        QCOMPARE(system->threads().size(), 1U);
        QVERIFY(!system->threads().contains(thread()));
    }

    void aPlayerGoesWhileItsOutputIsBeingMade()
    {
        const auto system = std::make_shared<SoundSystem>();
        system->hold();
        auto player = std::make_unique<SoundPlayer>(system->factory());
        player->play(connectSound, 0.55F);
        TRY_COMPARE(system->steps(), QStringList{u"made"_qs});
        player.reset(); // waits for nobody: the system is let go only afterwards
        system->release();
        TRY_COMPARE(system->steps(), (QStringList{u"made"_qs, u"gone"_qs}));
    }

    void aPlayerGoesWhileASoundBegins()
    {
        const auto system = std::make_shared<SoundSystem>();
        auto player = std::make_unique<SoundPlayer>(system->factory());
        player->play(connectSound, 0.55F);
        TRY_COMPARE(system->steps().size(), 2);
        system->hold();
        player->play(messageSound, 0.55F);
        TRY_COMPARE(system->steps().size(), 3);
        player->play(disconnectSound, 0.55F); // never heard
        player.reset();
        system->release();
        TRY_COMPARE(system->steps(),
                    (QStringList{u"made"_qs, u"connect.mp3 0.55"_qs, u"manager.mp3 0.55"_qs, u"gone"_qs}));
    }

    void aPlayerGoesBeforeItsTurn()
    {
        const auto system = std::make_shared<SoundSystem>();
        const auto unused = std::make_shared<SoundSystem>();
        SoundPlayer player(system->factory());
        system->hold();
        player.play(connectSound, 0.55F);
        TRY_COMPARE(system->steps().size(), 1);
        {
            SoundPlayer other(unused->factory());
            other.play(messageSound, 0.55F);
        }
        player.play(disconnectSound, 0.55F);
        system->release();
        TRY_COMPARE(system->steps(), (QStringList{u"made"_qs, u"disconnect.mp3 0.55"_qs}));
        player.play(connectSound, 0.55F); // comes after what the other had left
        TRY_COMPARE(system->steps().size(), 3);
        QCOMPARE(unused->steps(), QStringList());
    }

    void theSoundsAreBuiltIn_data()
    {
        QTest::addColumn<QUrl>("sound");
        QTest::newRow("connect") << connectSound;
        QTest::newRow("message") << messageSound;
        QTest::newRow("disconnect") << disconnectSound;
    }
    void theSoundsAreBuiltIn()
    {
        QFETCH(QUrl, sound);
        QVERIFY(QFile(u":"_qs + sound.path()).size() > 0);
    }
};

TARVO_TEST(SoundPlayerTest)
#include "SoundPlayerTest.moc"
