#include "ui/SimulatorFeed.h"

#include "manager/Session.h"
#include "manager/TrafficSession.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

#include <functional>

using namespace tarvo;
using test::Session;
using ui::SimulatorPageViewModel;

namespace {

/// The simulator page's model over a session.
template <class AnySession>
struct PageStage
{
    AnySession session;
    SimulatorPageViewModel page;
    ui::SimulatorFeed feed{session.manager, page};

    QTimer &trafficTimer() const { return *feed.template findChild<QTimer *>(u"trafficTimer"_qs); }
};
using SimulatorStage = PageStage<Session>;

/// The same on the network; the timer's own ticks are out of the way.
struct TrafficStage : PageStage<test::TrafficSession>
{
    TrafficStage()
    {
        emit session.manager->networkConnected(u"AB1"_qs);
        trafficTimer().setInterval(3'600'000);
    }
    void tick() const { QMetaObject::invokeMethod(&trafficTimer(), "timeout"); }
    QString summary() const { return page.trafficSummary(); }
    /// The session has heard of the pilot.
    bool hear(const QString &callsign)
    {
        session.peer.inject(test::TrafficSession::slow(callsign));
        return tarvo::test::waitFor([&] { return session.manager->remoteAircraft(callsign).has_value(); });
    }
};

/// Another sample than the one that a session begins with.
model::UserAircraftData own()
{
    model::UserAircraftData aircraft = Session::standing();
    aircraft.heading = 90;
    return aircraft;
}

} // namespace

using Loss = std::function<void(Session &)>;
using Wish = std::function<void(SimulatorPageViewModel &)>;
Q_DECLARE_METATYPE(Loss)
Q_DECLARE_METATYPE(Wish)

class SimulatorFeedTest : public QObject
{
    Q_OBJECT

private slots:
    void wishesReachTheSimulator_data()
    {
        using Page = SimulatorPageViewModel;
        QTest::addColumn<Wish>("wish");
        QTest::addColumn<QStringList>("calls");
        QTest::newRow("reconnect") << Wish([](Page &page) { page.requestReconnect(); })
                                   << QStringList{u"reconnectSimulator"_qs};
        QTest::newRow("COM1") << Wish([](Page &page) { page.requestSetCom1Frequency(u"121.800"_qs); })
                              << QStringList{u"setCom1Frequency 121800"_qs};
        QTest::newRow("COM2") << Wish([](Page &page) { page.requestSetCom2Frequency(u"124.550"_qs); })
                              << QStringList{u"setCom2Frequency 124550"_qs};
        QTest::newRow("COM1, no number") << Wish([](Page &page) { page.requestSetCom1Frequency(u"12x"_qs); })
                                         << QStringList();
        QTest::newRow("transponder") << Wish([](Page &page) { page.requestSetTransponderCode(u"7000"_qs); })
                                     << QStringList{u"setTransponderCode 7000"_qs};
        QTest::newRow("transponder, no code")
            << Wish([](Page &page) { page.requestSetTransponderCode(u"9"_qs); }) << QStringList();
        QTest::newRow("ident") << Wish([](Page &page) { page.requestTransponderIdent(); })
                               << QStringList{u"transponderIdent"_qs};
        QTest::newRow("mode C") << Wish([](Page &page) { page.requestTransponderModeToggle(); })
                                << QStringList{u"transponderModeToggle"_qs};
    }
    void wishesReachTheSimulator()
    {
        QFETCH(Wish, wish);
        QFETCH(QStringList, calls);
        SimulatorStage stage;
        const auto answer = [] { QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall); };
        wish(stage.page); // there is no simulator yet: nothing to do, and nothing to fall over
        answer();
        stage.session.addSimulator();
        wish(stage.page);
        answer();
        QCOMPARE(stage.session.sim->calls, calls);
    }

    void aWishGoesToTheNewSimulator()
    {
        SimulatorStage stage;
        stage.session.addSimulator();
        const auto old = stage.session.sim;
        stage.session.addSimulator();
        old->calls.clear();
        stage.page.requestSetCom1Frequency(u"121.800"_qs);
        QCOMPARE(stage.session.sim->calls, QStringList{u"setCom1Frequency 121800"_qs});
        QCOMPARE(old->calls, QStringList());
    }

    void thePageShowsTheSession()
    {
        SimulatorStage stage;
        stage.session.addSimulator();
        model::UserAircraftData aircraft = Session::standing();
        aircraft.heading = 271;
        emit stage.session.sim->userAircraftDataChanged(aircraft);
        QCOMPARE(stage.page.heading(), 271.0);
        emit stage.session.sim->pluginVersionChecked(true);
        emit stage.session.sim->cslValidationChecked(false);
        emit stage.session.sim->trafficMappingStatusChanged(u"12 个模型"_qs);
        emit stage.session.sim->xplaneVersionUpdated(120100);
        QCOMPARE(stage.page.pluginStatusText(), u"有效"_qs);
        QCOMPARE(stage.page.cslStatusText(), u"无效"_qs);
        QCOMPARE(stage.page.trafficMappingStatusText(), u"12 个模型"_qs);
        QCOMPARE(stage.page.xplaneVersionText(), u"X-Plane 120100"_qs);
        const QVariantList contacts{QVariantMap{{u"label"_qs, u"CES1"_qs}}};
        emit stage.session.sim->trafficSnapshotChanged(contacts);
        QCOMPARE(stage.page.trafficContacts(), contacts);

        stage.session.manager->setSimulator(std::make_shared<test::FakeSimulator>());
        QCOMPARE(stage.page.pluginStatusText(), u"未知"_qs);
        QCOMPARE(stage.page.xplaneVersionText(), u"未获取"_qs);
    }

    void samplesAreShownAtThePace()
    {
        SimulatorStage stage;
        stage.session.addSimulator();
        stage.feed.setPace(std::chrono::hours(1));
        auto &pace = *stage.feed.findChild<QTimer *>(u"paceTimer"_qs);
        const auto fly = [&stage](double heading) {
            model::UserAircraftData aircraft = own();
            aircraft.heading = heading;
            emit stage.session.sim->userAircraftDataChanged(aircraft);
        };
        fly(1);
        QCOMPARE(stage.page.heading(), 1.0); // the first at once
        fly(2);
        fly(3);
        QCOMPARE(stage.page.heading(), 1.0);
        pace.start(0);
        TRY_COMPARE(stage.page.heading(), 3.0); // the latest, not each
        stage.feed.setSeen(false);
        fly(4);
        stage.feed.setSeen(true);
        QCOMPARE(stage.page.heading(), 4.0); // whoever comes back waits for nothing
    }

    void whatIsTunedInAPauseIsShown()
    {
        SimulatorStage stage;
        stage.session.addSimulator();
        emit stage.session.sim->simPausedStateChanged(true);
        emit stage.session.sim->radioStackStateChanged({.com1Frequency = 121'800});
        QCOMPARE(stage.page.com1Frequency(), u"121.800"_qs);
        stage.feed.setSeen(false);
        emit stage.session.sim->radioStackStateChanged({.com1Frequency = 118'500});
        QCOMPARE(stage.page.com1Frequency(), u"121.800"_qs);
        stage.feed.setSeen(true);
        QCOMPARE(stage.page.com1Frequency(), u"118.500"_qs);
    }

    void aLostSimulatorTakesItsDataAlong_data()
    {
        QTest::addColumn<Loss>("lose");
        QTest::newRow("it says so") << Loss(
            [](Session &session) { emit session.sim->simConnectionStateChanged(false); });
        QTest::newRow("it falls silent") << Loss([](Session &session) {
            session.clock.advance(3001);
            session.fire("dataWatchdog");
        });
        QTest::newRow("another is picked")
            << Loss([](Session &session) { session.manager->setSimulator(std::make_shared<test::FakeSimulator>()); });
    }
    void aLostSimulatorTakesItsDataAlong()
    {
        QFETCH(Loss, lose);
        SimulatorStage stage;
        stage.session.addSimulator();
        model::RadioStackState radio;
        radio.transponderCode = 7700;
        emit stage.session.sim->radioStackStateChanged(radio);
        model::UserAircraftData aircraft = Session::standing();
        aircraft.heading = 271;
        emit stage.session.sim->userAircraftDataChanged(aircraft);
        QCOMPARE(stage.page.heading(), 271.0);
        QCOMPARE(stage.page.transponderCode(), u"7700"_qs);
        lose(stage.session);
        QCOMPARE(stage.page.heading(), 0.0);
        QCOMPARE(stage.page.latitude(), 0.0);
        QCOMPARE(stage.page.transponderCode(), u"0000"_qs);
        QCOMPARE(stage.page.motionSummary(), u"暂无运动数据"_qs);
    }

    void aSimulatorThatIsNotThereYetShowsNothing()
    {
        SimulatorStage stage;
        const QSignalSpy data(&stage.page, &SimulatorPageViewModel::dataChanged);
        stage.session.manager->setSimulator(std::make_shared<test::FakeSimulator>());
        QCOMPARE(data.size(), 0);
        QCOMPARE(stage.page.motionSummary(), u"暂无运动数据"_qs);
    }

    void unseenPagesAreLeftAlone()
    {
        SimulatorStage stage;
        stage.session.addSimulator();
        const QSignalSpy data(&stage.page, &SimulatorPageViewModel::dataChanged);
        const QSignalSpy shown(&stage.feed, &ui::SimulatorFeed::sampleShown);
        stage.feed.setSeen(false);
        model::UserAircraftData aircraft = Session::standing();
        for (aircraft.heading = 1; aircraft.heading < 4; ++aircraft.heading)
            emit stage.session.sim->userAircraftDataChanged(aircraft);
        QCOMPARE(data.size(), 0);
        QCOMPARE(shown.size(), 0);
        stage.feed.setSeen(true);
        QCOMPARE(data.size(), 1);
        QCOMPARE(shown.size(), 1);
        QCOMPARE(stage.page.heading(), 3.0);
        stage.feed.setSeen(false); // and nothing happens meanwhile
        stage.feed.setSeen(true);
        QCOMPARE(shown.size(), 1);
    }

    void trafficReachesThePageAtATick()
    {
        TrafficStage stage;
        QVERIFY(stage.session.online);
        emit stage.session.sim->userAircraftDataChanged(own());
        QVERIFY(stage.hear(u"AB2"_qs));
        QCOMPARE(stage.summary(), u"附近暂无交通目标"_qs);
        stage.tick(); // whether a page is open or not: one that opens has the traffic at once
        QCOMPARE(stage.summary(), u"附近 1 个交通目标"_qs);
        QCOMPARE(stage.page.plotContacts().size(), 1);
        QCOMPARE(stage.page.plotContacts().first().target.callsign, u"AB2"_qs);
        emit stage.session.manager->networkDisconnected(false);
        QCOMPARE(stage.summary(), u"附近暂无交通目标"_qs);
        QVERIFY(stage.page.plotContacts().isEmpty());
    }

    void trafficComesWithTheNextSample()
    {
        TrafficStage stage;
        QVERIFY(stage.session.online);
        stage.feed.setPace(std::chrono::hours(1));
        auto &pace = *stage.feed.findChild<QTimer *>(u"paceTimer"_qs);
        emit stage.session.sim->userAircraftDataChanged(own());
        QVERIFY(pace.isActive());
        QVERIFY(stage.hear(u"AB2"_qs));
        stage.tick();
        QCOMPARE(stage.summary(), u"附近暂无交通目标"_qs);
        pace.start(0);
        TRY_COMPARE(stage.summary(), u"附近 1 个交通目标"_qs); // also when no sample comes
    }

    void aSnapshotComesAtThePace()
    {
        SimulatorStage stage;
        stage.session.addSimulator();
        stage.feed.setPace(std::chrono::hours(1));
        auto &pace = *stage.feed.findChild<QTimer *>(u"paceTimer"_qs);
        const auto tell = [&stage](int contact) { emit stage.session.sim->trafficSnapshotChanged({contact}); };
        tell(1);
        QCOMPARE(stage.page.trafficContacts(), QVariantList{1}); // the first at once
        QVERIFY(pace.isActive());
        tell(2);
        tell(3);
        QCOMPARE(stage.page.trafficContacts(), QVariantList{1});
        pace.start(0);
        TRY_COMPARE(stage.page.trafficContacts(), QVariantList{3});
        stage.feed.setSeen(false);
        tell(4);
        pace.stop();
        tell(5);
        QCOMPARE(stage.page.trafficContacts(), QVariantList{3});
        stage.feed.setSeen(true);
        QCOMPARE(stage.page.trafficContacts(), QVariantList{5});
    }

    void aSnapshotGoesWithItsSimulator()
    {
        SimulatorStage stage;
        stage.session.addSimulator();
        stage.feed.setSeen(false);
        emit stage.session.sim->trafficSnapshotChanged({1});
        stage.session.addSimulator();
        stage.feed.setSeen(true);
        QCOMPARE(stage.page.trafficContacts(), QVariantList());
    }

    void unseenTrafficFollows()
    {
        TrafficStage stage;
        QVERIFY(stage.session.online);
        stage.feed.setSeen(false);
        QVERIFY(stage.hear(u"AB2"_qs));
        stage.tick();
        QCOMPARE(stage.summary(), u"附近暂无交通目标"_qs);
        stage.feed.setSeen(true); // without waiting for a tick
        QCOMPARE(stage.summary(), u"附近 1 个交通目标"_qs);
        stage.feed.setSeen(false);
        emit stage.session.manager->networkDisconnected(false);
        stage.feed.setSeen(true);
        QCOMPARE(stage.summary(), u"附近暂无交通目标"_qs);
    }

    void trafficIsLookedAtWhileConnected()
    {
        SimulatorStage stage;
        QVERIFY(!stage.trafficTimer().isActive());
        emit stage.session.manager->networkConnected(u"AB1"_qs);
        QVERIFY(stage.trafficTimer().isActive());
        QCOMPARE(stage.trafficTimer().interval(), 1000);
        emit stage.session.manager->networkDisconnected(false);
        QVERIFY(!stage.trafficTimer().isActive());
    }
};

TARVO_TEST(SimulatorFeedTest)
#include "SimulatorFeedTest.moc"
