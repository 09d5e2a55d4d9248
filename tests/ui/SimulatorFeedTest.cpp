#include "ui/SimulatorFeed.h"

#include "manager/Session.h"
#include "manager/TrafficSession.h"
#include "support/TestRegistry.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

#include <functional>

using namespace tarvo;
using test::Session;
using ui::SimulatorPageViewModel;

namespace {

/// The simulator page's model over a session.
struct Desk
{
    Session session;
    SimulatorPageViewModel page;
    ui::SimulatorFeed feed{session.manager, page};

    QTimer &trafficTimer() { return *feed.findChild<QTimer *>(u"trafficTimer"_qs); }
};

/// The same over a session that is on the network; the timer's own ticks are out of the way.
struct Sky
{
    test::TrafficSession session;
    SimulatorPageViewModel page;
    ui::SimulatorFeed feed{session.manager, page};
    QTimer *trafficTimer = feed.findChild<QTimer *>(u"trafficTimer"_qs);

    Sky()
    {
        emit session.manager->networkConnected(u"AB1"_qs);
        trafficTimer->setInterval(3'600'000);
    }
    void tick() const { QMetaObject::invokeMethod(trafficTimer, "timeout"); }
    QString summary() const { return page.trafficSummary(); }
    /// The session has heard of the pilot.
    bool hear(const QString &callsign)
    {
        session.peer.inject(test::TrafficSession::slow(callsign));
        return QTest::qWaitFor([&] { return session.manager->remoteAircraft(callsign).has_value(); });
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
        Desk desk;
        wish(desk.page); // there is no simulator yet: nothing to do, and nothing to fall over
        desk.session.addSimulator();
        wish(desk.page);
        QCOMPARE(desk.session.sim->calls, calls);
    }

    void aWishGoesToTheNewSimulator()
    {
        Desk desk;
        desk.session.addSimulator();
        const auto old = desk.session.sim;
        desk.session.addSimulator();
        old->calls.clear();
        desk.page.requestSetCom1Frequency(u"121.800"_qs);
        QCOMPARE(desk.session.sim->calls, QStringList{u"setCom1Frequency 121800"_qs});
        QCOMPARE(old->calls, QStringList());
    }

    void thePageShowsTheSession()
    {
        Desk desk;
        desk.session.addSimulator();
        model::UserAircraftData aircraft = Session::standing();
        aircraft.heading = 271;
        emit desk.session.sim->userAircraftDataChanged(aircraft);
        QCOMPARE(desk.page.heading(), 271.0);
        emit desk.session.sim->pluginVersionChecked(true);
        emit desk.session.sim->cslValidationChecked(false);
        emit desk.session.sim->trafficMappingStatusChanged(u"12 个模型"_qs);
        emit desk.session.sim->xplaneVersionUpdated(120100);
        QCOMPARE(desk.page.pluginStatusText(), u"有效"_qs);
        QCOMPARE(desk.page.cslStatusText(), u"无效"_qs);
        QCOMPARE(desk.page.trafficMappingStatusText(), u"12 个模型"_qs);
        QCOMPARE(desk.page.xplaneVersionText(), u"X-Plane 120100"_qs);
        const QVariantList contacts{QVariantMap{{u"label"_qs, u"CES1"_qs}}};
        emit desk.session.sim->trafficSnapshotChanged(contacts);
        QCOMPARE(desk.page.trafficContacts(), contacts);

        desk.session.manager->setSimulator(std::make_shared<test::FakeSimulator>());
        QCOMPARE(desk.page.pluginStatusText(), u"未知"_qs);
        QCOMPARE(desk.page.xplaneVersionText(), u"未获取"_qs);
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
        Desk desk;
        desk.session.addSimulator();
        model::RadioStackState radio;
        radio.transponderCode = 7700;
        emit desk.session.sim->radioStackStateChanged(radio);
        model::UserAircraftData aircraft = Session::standing();
        aircraft.heading = 271;
        emit desk.session.sim->userAircraftDataChanged(aircraft);
        QCOMPARE(desk.page.heading(), 271.0);
        QCOMPARE(desk.page.transponderCode(), u"7700"_qs);
        lose(desk.session);
        QCOMPARE(desk.page.heading(), 0.0);
        QCOMPARE(desk.page.latitude(), 0.0);
        QCOMPARE(desk.page.transponderCode(), u"0000"_qs);
        QCOMPARE(desk.page.motionSummary(), u"暂无运动数据"_qs);
    }

    void aSimulatorThatIsNotThereYetShowsNothing()
    {
        Desk desk;
        const QSignalSpy data(&desk.page, &SimulatorPageViewModel::dataChanged);
        desk.session.manager->setSimulator(std::make_shared<test::FakeSimulator>());
        QCOMPARE(data.size(), 0);
        QCOMPARE(desk.page.motionSummary(), u"暂无运动数据"_qs);
    }

    void unseenPagesAreLeftAlone()
    {
        Desk desk;
        desk.session.addSimulator();
        const QSignalSpy data(&desk.page, &SimulatorPageViewModel::dataChanged);
        const QSignalSpy shown(&desk.feed, &ui::SimulatorFeed::sampleShown);
        desk.feed.setSeen(false);
        model::UserAircraftData aircraft = Session::standing();
        for (aircraft.heading = 1; aircraft.heading < 4; ++aircraft.heading)
            emit desk.session.sim->userAircraftDataChanged(aircraft);
        QCOMPARE(data.size(), 0);
        QCOMPARE(shown.size(), 0);
        desk.feed.setSeen(true);
        QCOMPARE(data.size(), 1);
        QCOMPARE(shown.size(), 1);
        QCOMPARE(desk.page.heading(), 3.0);
        desk.feed.setSeen(false); // and nothing happens meanwhile
        desk.feed.setSeen(true);
        QCOMPARE(shown.size(), 1);
    }

    void trafficReachesThePageAtATick()
    {
        Sky sky;
        QVERIFY(sky.session.online);
        emit sky.session.sim->userAircraftDataChanged(own());
        QVERIFY(sky.hear(u"AB2"_qs));
        QCOMPARE(sky.summary(), u"附近暂无交通目标"_qs);
        sky.tick(); // whether a page is open or not: one that opens has the traffic at once
        QCOMPARE(sky.summary(), u"附近 1 个交通目标"_qs);
        QCOMPARE(sky.page.plotContacts().size(), 1);
        QCOMPARE(sky.page.plotContacts().first().target.callsign, u"AB2"_qs);
        emit sky.session.manager->networkDisconnected(false);
        QCOMPARE(sky.summary(), u"附近暂无交通目标"_qs);
        QVERIFY(sky.page.plotContacts().isEmpty());
    }

    void unseenTrafficFollows()
    {
        Sky sky;
        QVERIFY(sky.session.online);
        sky.feed.setSeen(false);
        QVERIFY(sky.hear(u"AB2"_qs));
        sky.tick();
        QCOMPARE(sky.summary(), u"附近暂无交通目标"_qs);
        sky.feed.setSeen(true); // without waiting for a tick
        QCOMPARE(sky.summary(), u"附近 1 个交通目标"_qs);
        sky.feed.setSeen(false);
        emit sky.session.manager->networkDisconnected(false);
        sky.feed.setSeen(true);
        QCOMPARE(sky.summary(), u"附近暂无交通目标"_qs);
    }

    void trafficIsLookedAtWhileConnected()
    {
        Desk desk;
        QVERIFY(!desk.trafficTimer().isActive());
        emit desk.session.manager->networkConnected(u"AB1"_qs);
        QVERIFY(desk.trafficTimer().isActive());
        QCOMPARE(desk.trafficTimer().interval(), 1000);
        emit desk.session.manager->networkDisconnected(false);
        QVERIFY(!desk.trafficTimer().isActive());
    }
};

TARVO_TEST(SimulatorFeedTest)
#include "SimulatorFeedTest.moc"
