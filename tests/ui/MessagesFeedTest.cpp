#include "ui/MessagesFeed.h"

#include "manager/ControllerManager.h"
#include "manager/Session.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "ui/SoundPlayer.h"
#include "ui/Sounds.h"
#include "ui/viewmodel/MessagesPageViewModel.h"

#include <functional>

using namespace tarvo;
using manager::NetworkManager;
using test::Session;
using ui::MessagesPageViewModel;

namespace {

/// The messages page's model over a session that is on the network as AB1.
struct MessagesStage
{
    Session session;
    std::shared_ptr<manager::ControllerManager> controllers =
        std::make_shared<manager::ControllerManager>(session.manager);
    MessagesPageViewModel page;
    ui::SoundPlayer sounds;
    QSignalSpy played{&sounds, &ui::SoundPlayer::played};
    test::ManualClock clock;
    ui::MessagesFeed feed{session.manager, controllers, page, sounds, nullptr, clock};

    MessagesStage()
    {
        session.connectObserver();
        emit session.manager->networkConnected(u"AB1"_qs);
    }

    /// A sound has been asked for that will be heard soon.
    bool willSound() const { return soundTimer().isActive(); }
    const QTimer &soundTimer() const { return *feed.findChild<QTimer *>(u"soundTimer"_qs); }

    /// The newest message as "type channel from>to: text".
    QString newest() const
    {
        const QVariantMap row = page.messages().value(page.messages().size() - 1).toMap();
        const auto text = [&row](const QString &key) { return row[key].toString(); };
        return u"%1 %2 %3>%4: %5"_qs.arg(text(u"type"_qs), text(u"channel"_qs), text(u"from"_qs), text(u"to"_qs),
                                         text(u"message"_qs));
    }
};

} // namespace

using Event = std::function<void(NetworkManager &)>;
Q_DECLARE_METATYPE(Event)

class MessagesFeedTest : public QObject
{
    Q_OBJECT

private slots:
    void whatIsSaidReachesThePage_data()
    {
        QTest::addColumn<Event>("event");
        QTest::addColumn<QString>("row");
        QTest::addColumn<float>("volume"); // 0: silent
        const auto add = [](const char *name, Event event, const QString &row, float volume) {
            QTest::newRow(name) << std::move(event) << row << volume;
        };
        add(
            "server", [](NetworkManager &network) { emit network.serverMessageReceived(u"welcome"_qs); },
            u"server SERVER 服务器>: welcome"_qs, 0.55F);
        add(
            "private in", [](NetworkManager &network) { emit network.privateMessageReceived(u"CES1"_qs, u"hi"_qs); },
            u"private_in CES1 CES1>AB1: hi"_qs, 0.75F);
        add(
            "private out", [](NetworkManager &network) { emit network.privateMessageSent(u"CES1"_qs, u"hello"_qs); },
            u"private_out CES1 AB1>CES1: hello"_qs, 0);
        add(
            "private out, as it went",
            [](NetworkManager &network) { emit network.privateMessageSent(u"CES1"_qs, u"你好 A"_qs); },
            u"private_out CES1 AB1>CES1: ?? A"_qs, 0);
        add(
            "broadcast", [](NetworkManager &network) { emit network.broadcastMessageReceived(u"SUP"_qs, u"all"_qs); },
            u"broadcast BROADCAST SUP>全体: all"_qs, 0.55F);
        add(
            "wallop", [](NetworkManager &network) { emit network.wallopSent(u"help"_qs); },
            u"wallop_out WALLOP AB1>: help"_qs, 0);
        add(
            "radio out", [](NetworkManager &network) { emit network.radioMessageSent(u"ready"_qs, {118500}); },
            u"radio_out RADIO AB1>: ready"_qs, 0);
        add(
            "radio in",
            [](NetworkManager &network) {
                emit network.radioMessageReceived({.from = u"TWR"_qs,
                                                   .message = u"cleared"_qs,
                                                   .frequencies = QVariant::fromValue(QList<uint>{118500}),
                                                   .direct = false,
                                                   .dualReceive = false});
            },
            u"radio_in RADIO TWR>118.500: cleared"_qs, 0.55F);
        add(
            "SELCAL", [](NetworkManager &network) { emit network.selcalAlertReceived(u"TWR"_qs, {118500}); },
            u"selcal SELCAL TWR>: "_qs, 0.75F);
        add(
            "a note",
            [](NetworkManager &network) {
                emit network.notificationPosted(u"Connecting"_qs, common::MessageType::Info);
            },
            u"system SERVER 系统>: Connecting"_qs, 0);
    }
    void whatIsSaidReachesThePage()
    {
        QFETCH(Event, event);
        QFETCH(QString, row);
        QFETCH(float, volume);
        MessagesStage stage;
        event(*stage.session.manager);
        QCOMPARE(stage.newest(), row);
        QCOMPARE(stage.willSound(), volume > 0);
        if (volume > 0) {
            TRY_COMPARE(stage.played.size(), 1);
            QCOMPARE(stage.sounds.source(), test::messageSound);
            QCOMPARE(stage.sounds.volume(), volume);
        }
    }

    void onlyAnAtisThatWasAskedForIsShown()
    {
        MessagesStage stage;
        NetworkManager &network = *stage.session.manager;
        stage.page.setNetworkConnected(true);
        const qsizetype before = stage.page.messages().size();
        emit network.controllerAtisReceived(u"ZBAA_ATIS"_qs, {u"Information A"_qs});
        QCOMPARE(stage.page.messages().size(), before);
        stage.page.requestAtis(u"zbaa_atis"_qs);
        QCOMPARE(stage.page.activeChannel(), u"SERVER"_qs);
        emit network.controllerAtisReceived(u"ZBAA_ATIS"_qs, {u"Information A"_qs, u"QNH 1013"_qs});
        QCOMPARE(stage.newest(), u"system SERVER 系统>: ZBAA_ATIS ATIS：Information A\nQNH 1013"_qs);
        emit network.controllerAtisReceived(u"ZBAA_ATIS"_qs, {u"again"_qs}); // once for each wish
        QCOMPARE(stage.page.messages().size(), before + 1);
    }

    void theRadioIsSilentWithoutATransmitter()
    {
        MessagesStage stage;
        stage.page.setNetworkConnected(true);
        QVERIFY(stage.page.composeBlocked());
    }

    void aBurstIsHeardOnce()
    {
        MessagesStage stage;
        const auto talk = [&stage] {
            for (int i = 0; i < 100; ++i)
                emit stage.session.manager->serverMessageReceived(u"welcome"_qs);
        };
        talk();
        emit stage.session.manager->privateMessageReceived(u"CES1"_qs, u"hi"_qs);
        talk();
        QCOMPARE(stage.played.size(), 0);
        QCOMPARE(stage.soundTimer().interval(), 0);
        TRY_COMPARE(stage.played.size(), 1);
        QCOMPARE(stage.sounds.volume(), 0.75F); // the most urgent of them all
        QVERIFY(!stage.willSound());
        talk();
        TRY_COMPARE(stage.played.size(), 2);
        QCOMPARE(stage.sounds.volume(), 0.55F);
    }

    void soundsKeepHalfASecondApart_data()
    {
        QTest::addColumn<int>("afterMs");
        QTest::addColumn<int>("waitMs");
        QTest::newRow("at once") << 0 << 500;
        QTest::newRow("soon") << 180 << 320;
        QTest::newRow("nearly in time") << 499 << 1;
        QTest::newRow("in time") << 500 << 0;
        QTest::newRow("long after") << 60'000 << 0;
    }

    void soundsKeepHalfASecondApart()
    {
        QFETCH(int, afterMs);
        MessagesStage stage;
        emit stage.session.manager->serverMessageReceived(u"welcome"_qs);
        TRY_COMPARE(stage.played.size(), 1);
        stage.clock.advance(afterMs);
        emit stage.session.manager->serverMessageReceived(u"welcome"_qs);
        QTEST(stage.soundTimer().interval(), "waitMs");
        stage.clock.advance(100);
        emit stage.session.manager->serverMessageReceived(u"welcome"_qs);
        QTEST(stage.soundTimer().interval(), "waitMs"); // the later ones wait no longer
    }

    void theOwnCallsignIsThatOfTheSession()
    {
        MessagesStage stage;
        NetworkManager &network = *stage.session.manager;
        emit network.privateMessageReceived(u"CES1"_qs, u"hi"_qs);
        QCOMPARE(stage.newest(), u"private_in CES1 CES1>AB1: hi"_qs);
        network.disconnectFromNetwork();
        QVERIFY(network.connectToNetwork(u"cd2"_qs, QString(), QString(), true));
        emit network.privateMessageReceived(u"CES1"_qs, u"there"_qs); // before the login is complete
        QCOMPARE(stage.newest(), u"private_in CES1 CES1>CD2: there"_qs);
    }

    void wishesReachTheNetwork()
    {
        MessagesStage stage;
        const QSignalSpy sent(stage.session.manager.get(), &NetworkManager::privateMessageSent);
        const QSignalSpy wallop(stage.session.manager.get(), &NetworkManager::wallopSent);
        const QSignalSpy radio(stage.session.manager.get(), &NetworkManager::radioMessageSent);
        stage.page.sendPrivateMessage(u"CES1"_qs, u"hi"_qs);
        QCOMPARE(sent.size(), 1);
        QCOMPARE(sent[0], (QVariantList{u"CES1"_qs, u"hi"_qs}));
        stage.page.sendWallopMessage(u"help"_qs);
        QCOMPARE(wallop.size(), 1);
        stage.page.sendRadioMessage(u"unheard"_qs); // no radio transmits
        QCOMPARE(radio.size(), 0);
        stage.session.addSimulator();
        model::RadioStackState radios;
        radios.com1TransmitEnabled = true;
        radios.com1Frequency = 118500;
        emit stage.session.sim->radioStackStateChanged(radios);
        stage.page.sendRadioMessage(u"ready"_qs);
        QCOMPARE(radio.size(), 1);
    }

    void stationsComeAndGo()
    {
        MessagesStage stage;
        model::Controller tower{.callsign = u"ZBAA_TWR"_qs, .frequency = 118500, .normalisedFrequency = 118500};
        emit stage.controllers->controllerAdded(tower);
        QCOMPARE(stage.page.nearbyClients().size(), 1);
        tower.realName = u"Li Lei"_qs;
        emit stage.controllers->controllerUpdated(tower);
        QCOMPARE(stage.page.nearbyClients().size(), 1);
        QCOMPARE(stage.page.nearbyClients().first().toMap()[u"name"_qs].toString(), u"Li Lei"_qs);
        emit stage.controllers->controllerDeleted(tower);
        QVERIFY(stage.page.nearbyClients().isEmpty());
    }

    void aFeedThatIsGoneTakesNoStationAway()
    {
        test::Session session;
        const auto controllers = std::make_shared<manager::ControllerManager>(session.manager);
        MessagesPageViewModel page;
        ui::SoundPlayer sounds;
        auto feed = std::make_unique<ui::MessagesFeed>(session.manager, controllers, page, sounds);
        const model::Controller tower{.callsign = u"ZBAA_TWR"_qs, .frequency = 118500, .normalisedFrequency = 118500};
        emit controllers->controllerAdded(tower);
        feed.reset();
        emit controllers->controllerDeleted(tower); // the page is still there, and what it was told by is not
        QCOMPARE(page.nearbyClients().size(), 1);
    }

    void aSessionBeginsAndEndsWithoutStations()
    {
        MessagesStage stage;
        emit stage.controllers->controllerAdded({.callsign = u"ZBAA_TWR"_qs, .frequency = 118500});
        emit stage.session.manager->networkConnected(u"AB1"_qs);
        QVERIFY(stage.page.networkConnected() && stage.page.nearbyClients().isEmpty());
        emit stage.controllers->controllerAdded({.callsign = u"ZBAA_TWR"_qs, .frequency = 118500});
        emit stage.session.manager->networkDisconnected(false);
        QVERIFY(!stage.page.networkConnected() && stage.page.nearbyClients().isEmpty());
    }
};

TARVO_TEST(MessagesFeedTest)
#include "MessagesFeedTest.moc"
