#include "voice/engine/AudioHandler.h"

#include "AppConfig.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "voice/engine/LoudPacket.h"
#include "voice/engine/VoiceCapture.h"
#include "voice/engine/WishStage.h"

#include <QTest>
#include <QTimer>

#include <chrono>
#include <functional>
#include <future>
#include <optional>

using namespace tarvo;
using namespace tarvo::voice;
using tarvo::test::loudPacket;
using tarvo::test::WishStage;
using namespace std::chrono_literals;

namespace {

using enum StreamRole;
using Roles = WishStage::Roles;
using Events = WishStage::Events;
using Deeds = std::function<void(AudioHandler &, AppConfig &)>;

const Roles all{Input, Headphone, Speaker};

void buzzOnSpeaker(AppConfig &config, bool speaker = true)
{
    config.set(config::voiceConflictPlayDevice, speaker ? 1 : 0);
}

} // namespace

class DeviceWishesTest : public QObject
{
    Q_OBJECT

private slots:
    void whatRuns_data()
    {
        QTest::addColumn<Deeds>("deeds");
        QTest::addColumn<Roles>("running");
        QTest::newRow("nothing") << Deeds([](AudioHandler &, AppConfig &) {}) << Roles{};
        QTest::newRow("session") << Deeds([](AudioHandler &a, AppConfig &) { a.startAll(); }) << all;
        QTest::newRow("session that is over") << Deeds([](AudioHandler &a, AppConfig &) {
            a.startAll();
            a.stopAll();
        }) << Roles{};
        QTest::newRow("microphone, headphone")
            << Deeds([](AudioHandler &a, AppConfig &) { a.startMicTest(false); }) << Roles{Input, Headphone};
        QTest::newRow("microphone, speaker")
            << Deeds([](AudioHandler &a, AppConfig &) { a.startMicTest(true); }) << Roles{Input, Speaker};
        QTest::newRow("microphone, other output meanwhile") << Deeds([](AudioHandler &a, AppConfig &) {
            a.startMicTest(true);
            a.startMicTest(false);
        }) << Roles{Input, Headphone};
        QTest::newRow("microphone, over") << Deeds([](AudioHandler &a, AppConfig &) {
            a.startMicTest(true);
            a.stopMicTest();
        }) << Roles{};
        QTest::newRow("microphone, over twice, then a session") << Deeds([](AudioHandler &a, AppConfig &) {
            a.startMicTest(true);
            a.stopMicTest();
            a.startAll();
            a.stopMicTest();
        }) << all;
        QTest::newRow("conflict, headphone")
            << Deeds([](AudioHandler &a, AppConfig &) { a.startConflictTest(); }) << Roles{Input, Headphone};
        QTest::newRow("conflict, speaker") << Deeds([](AudioHandler &a, AppConfig &config) {
            buzzOnSpeaker(config);
            a.startConflictTest();
        }) << Roles{Input, Speaker};
        QTest::newRow("conflict, other output meanwhile") << Deeds([](AudioHandler &a, AppConfig &config) {
            a.startConflictTest();
            buzzOnSpeaker(config);
        }) << Roles{Input, Speaker};
        QTest::newRow("conflict, over on the other output") << Deeds([](AudioHandler &a, AppConfig &config) {
            a.startConflictTest();
            buzzOnSpeaker(config);
            a.stopConflictTest();
        }) << Roles{};
        QTest::newRow("conflict, other output afterwards") << Deeds([](AudioHandler &a, AppConfig &config) {
            a.startConflictTest();
            a.stopConflictTest();
            buzzOnSpeaker(config);
        }) << Roles{};
        QTest::newRow("conflict, over, then the microphone") << Deeds([](AudioHandler &a, AppConfig &) {
            a.startConflictTest();
            a.stopConflictTest();
            a.startMicTest(true);
        }) << Roles{Input, Speaker};
        QTest::newRow("conflict's output in a session") << Deeds([](AudioHandler &a, AppConfig &config) {
            a.startAll();
            buzzOnSpeaker(config);
        }) << all;
    }

    void whatRuns()
    {
        QFETCH(Deeds, deeds);
        WishStage stage;
        deeds(*stage.audio, stage.config);
        stage.settle();
        QTEST(stage.system.running(), "running");
        QCOMPARE(stage.takeEvents(), Events());
    }

    void aWishThatComesWhileAnOlderIsDone()
    {
        WishStage stage;
        stage.system.refuse(all);
        stage.system.hang();
        stage.audio->startMicTest(false);
        QCoreApplication::processEvents();
        stage.audio->startAll();
        stage.system.release();
        stage.settle();
        // The outcome of each is told, and not that of the first as the second's.
        QCOMPARE(stage.takeEvents(), (Events{{DeviceEvent::Failed, {Input, Headphone}}, {DeviceEvent::Failed, all}}));
    }

    void secondStartOpensNothing_data()
    {
        QTest::addColumn<Deeds>("start");
        QTest::newRow("session") << Deeds([](AudioHandler &a, AppConfig &) { a.startAll(); });
        QTest::newRow("conflict") << Deeds([](AudioHandler &a, AppConfig &) { a.startConflictTest(); });
        QTest::newRow("microphone") << Deeds([](AudioHandler &a, AppConfig &) { a.startMicTest(false); });
    }

    void secondStartOpensNothing()
    {
        QFETCH(Deeds, start);
        WishStage stage;
        start(*stage.audio, stage.config);
        stage.settle();
        const Roles running = stage.system.running();
        QVERIFY(stage.system.takeTried() > 0);
        start(*stage.audio, stage.config);
        stage.settle();
        QCOMPARE(stage.system.takeTried(), 0);
        QCOMPARE(stage.system.running(), running);
    }

    void microphoneIsHeardWhereItIsWanted_data()
    {
        QTest::addColumn<bool>("speaker");
        QTest::newRow("headphone") << false;
        QTest::newRow("speaker") << true;
    }

    void microphoneIsHeardWhereItIsWanted()
    {
        QFETCH(bool, speaker);
        const StreamRole target = speaker ? Speaker : Headphone;
        WishStage stage;
        const auto say = [&stage] { stage.audio->inputStream().deliver({.volume = {}, .opus = loudPacket()}); };
        stage.audio->startMicTest(speaker);
        stage.settle();
        say();
        QVERIFY(stage.system.play(target) > 0.1F);
        QCOMPARE(stage.system.play(target), 0.0F);
        stage.audio->stopMicTest();
        stage.audio->startAll();
        stage.settle();
        say(); // goes to the server alone
        QCOMPARE(stage.system.play(target), 0.0F);
    }

    void microphoneWaitsForThisThreadWithoutPilingUp()
    {
        WishStage stage;
        stage.audio->startAll();
        stage.settle();
        stage.audio->setPttActive(true);
        int frames = 0;
        connect(&*stage.audio, &AudioHandler::encodedAudioReady, &*stage.audio, [&frames] { ++frames; });
        const auto speak = [&](int count) {
            for (int i = 0; i < count; ++i)
                stage.system.capture(std::vector<std::int16_t>(882, 1000));
            QCoreApplication::processEvents();
        };
        speak(40);
        QCOMPARE(frames, 32);
        speak(1);
        QCOMPARE(frames, 33);
    }

    void conflictTestBuzzesUntilItIsStopped_data()
    {
        QTest::addColumn<bool>("speaker");
        QTest::newRow("headphone") << false;
        QTest::newRow("speaker") << true;
    }

    void conflictTestBuzzesUntilItIsStopped()
    {
        QFETCH(bool, speaker);
        const StreamRole target = speaker ? Speaker : Headphone;
        WishStage stage;
        buzzOnSpeaker(stage.config, !speaker);
        stage.audio->startConflictTest();
        stage.settle();
        buzzOnSpeaker(stage.config, speaker); // moves over
        stage.settle();
        QVERIFY(test::waitFor([&] { return stage.system.play(target) > 0.1F; }));
        stage.audio->stopConflictTest();
        QVERIFY(!stage.timer("conflict").isActive());
    }

    void nothingIsOpenedBeforeTheDevicesAreKnown()
    {
        WishStage stage;
        bool isTried = false;
        stage.audio->waitForDevices();
        stage.audio->startAll([&isTried] { isTried = true; });
        stage.settle();
        QVERIFY(!isTried);
        QCOMPARE(stage.system.takeTried(), 0);
        stage.audio->stopWaitingForDevices();
        stage.settle();
        QVERIFY(isTried);
        QCOMPARE(stage.system.running(), all);
    }

    void wishesOfAHangingSystemAreOneDeed()
    {
        WishStage stage;
        int tried = 0;
        stage.system.hang();
        for (int i = 0; i < 10; ++i) {
            stage.audio->startAll([&tried] { ++tried; });
            QCoreApplication::processEvents();
            stage.audio->stopAll();
        }
        stage.audio->startMicTest(false);
        QCOMPARE(tried, 0);
        stage.system.release();
        stage.settle();
        QCOMPARE(tried, 10);
        QCOMPARE(stage.system.running(), (Roles{Input, Headphone}));
        QCOMPARE(stage.system.takeTried(), 3); // of the first wish
    }

    void whenTriedIsToldWithoutDevices()
    {
        WishStage stage;
        stage.system.refuse(all);
        bool isTried = false;
        stage.audio->startAll([&isTried] { isTried = true; });
        stage.settle();
        QVERIFY(isTried);
        QCOMPARE(stage.takeEvents(), (Events{{DeviceEvent::Failed, all}}));
    }

    void nothingRunsAfterTheEnd()
    {
        WishStage stage;
        stage.audio->startAll();
        stage.settle();
        stage.audio.reset();
        stage.sound->waitUntilIdle(std::chrono::milliseconds(test::patienceMs));
        QCOMPARE(stage.system.running(), Roles{});
    }

    void whatTheSoundThreadRefusesIsDoneLater()
    {
        WishStage stage;
        std::promise<void> begun;
        std::promise<void> end;
        stage.sound->post([&begun, held = end.get_future().share()] {
            begun.set_value();
            held.wait();
        });
        begun.get_future().wait(); // what it works at takes no room
        while (stage.sound->post([] {})) {
        }
        bool isTried = false;
        stage.audio->setInputDevice(7);
        stage.audio->startAll([&isTried] { isTried = true; });
        for (const auto pause : {1s, 2s}) {
            TRY_VERIFY(stage.pause() == std::chrono::milliseconds(pause));
            QVERIFY(!isTried);
            QMetaObject::invokeMethod(&stage.timer("next"), "timeout");
        }
        end.set_value();
        QVERIFY(stage.sound->waitUntilIdle(std::chrono::milliseconds(test::patienceMs)));
        QTest::ignoreMessage(QtWarningMsg, "Input device change failed: invalid device 7");
        stage.pass();
        QVERIFY(isTried);
        QCOMPARE(stage.system.running(), all);
    }

    // --- devices that fail ---

    void systemThatIsGoneIsTriedEverMoreSeldom()
    {
        WishStage stage;
        stage.system.refuse(all);
        stage.audio->startAll();
        stage.settle();
        QCOMPARE(stage.takeEvents(), (Events{{DeviceEvent::Failed, all}}));
        for (const auto pause : {1s, 2s, 4s, 8s, 16s, 30s, 30s}) {
            QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>(pause));
            stage.system.takeTried();
            stage.pass();
            QCOMPARE(stage.system.takeTried(), 3);
        }
        QCOMPARE(stage.takeEvents(), Events()); // the pilot knows
        stage.system.refuse({});
        stage.pass();
        QCOMPARE(stage.system.running(), all);
        QCOMPARE(stage.takeEvents(), (Events{{DeviceEvent::Back, all}}));
    }

    void newWishIsTriedAtOnceAndToldAgain()
    {
        WishStage stage;
        stage.system.refuse(all);
        stage.audio->startAll();
        stage.settle();
        stage.pass();
        stage.takeEvents();
        stage.audio->startAll();
        stage.settle();
        QCOMPARE(stage.takeEvents(), (Events{{DeviceEvent::Failed, all}}));
        QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>(1s));
    }

    void oneDeviceBesideOthersIsTriedOnceMore()
    {
        WishStage stage;
        stage.system.refuse({Speaker});
        stage.audio->startAll();
        stage.settle();
        QCOMPARE(stage.takeEvents(), (Events{{DeviceEvent::Failed, {Speaker}}}));
        QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>(1s));
        stage.pass();
        QCOMPARE(stage.system.takeTried(), 6);
        for (int i = 0; i < 3; ++i) { // it would interrupt what is heard
            QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>(5s));
            stage.pass();
        }
        QCOMPARE(stage.system.takeTried(), 0);
        QCOMPARE(stage.system.running(), (Roles{Input, Headphone}));
        QCOMPARE(stage.takeEvents(), Events());
    }

    void whoHasChosenNoneGetsTheDefaultAgain()
    {
        WishStage stage;
        stage.system.plug({"a"});
        stage.audio->startAll();
        stage.settle();
        stage.system.plug({"b", "c"});
        for (const StreamRole role : all)
            stage.system.end(role, true);
        stage.settle();
        stage.pass(); // others are here, which is told first
        QCOMPARE(stage.system.takeSearches(), 1);
        stage.audio->stopWaitingForDevices(); // nobody chooses
        stage.settle();
        QCOMPARE(stage.system.running(), all);
    }

    void streamThatEnds_data()
    {
        QTest::addColumn<bool>("saysSo");
        QTest::newRow("and says so") << true;
        QTest::newRow("without a word") << false;
    }

    void streamThatEnds()
    {
        QFETCH(bool, saysSo);
        WishStage stage;
        stage.audio->startAll();
        stage.settle();
        stage.system.takeTried();
        stage.system.end(Headphone, saysSo);
        stage.settle();
        if (!saysSo) {
            QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>(5s));
            stage.pass();
        }
        QCOMPARE(stage.takeEvents(), (Events{{DeviceEvent::Ended, {Headphone}}}));
        QVERIFY(!stage.audio->headphoneStream().isRunning());
        QCOMPARE(stage.system.takeTried(), 0);
        QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>(1s));
        stage.pass();
        QCOMPARE(stage.takeEvents(), (Events{{DeviceEvent::Back, {Headphone}}}));
        QCOMPARE(stage.system.running(), all);
        QVERIFY(stage.audio->headphoneStream().isRunning());
    }

    void streamsThatEndAgainAndAgain()
    {
        WishStage stage;
        stage.audio->startMicTest(false);
        stage.settle();
        const auto end = [&stage] {
            stage.system.end(Input, true);
            stage.system.end(Headphone, true);
            stage.settle();
        };
        for (const auto pause : {1s, 2s, 4s}) { // no stream that ends at once makes a busy loop
            end();
            QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>(pause));
            stage.pass();
        }
        QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>(5s));
        stage.pass(); // all is well
        end();
        QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>(1s));
    }

    void whatIsNotWantedIsLeftAlone()
    {
        WishStage stage;
        stage.audio->startAll();
        stage.settle();
        stage.system.end(Headphone, false);
        stage.audio->stopAll();
        stage.settle();
        QCOMPARE(stage.takeEvents(), Events());
        QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>());
        stage.system.refuse(all);
        stage.audio->startAll();
        stage.settle();
        stage.takeEvents();
        stage.audio->stopAll();
        stage.settle();
        QCOMPARE(stage.takeEvents(), Events());
        QCOMPARE(stage.pause(), std::optional<std::chrono::milliseconds>());
    }
};

TARVO_TEST(DeviceWishesTest)
#include "DeviceWishesTest.moc"
