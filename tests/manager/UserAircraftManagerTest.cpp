#include "manager/UserAircraftManager.h"
#include "manager/Session.h"
#include "support/TestRegistry.h"

#include <limits>

using namespace tarvo;
using tarvo::manager::UserAircraftManager;
using tarvo::model::UserAircraftConfigData;
using tarvo::test::FakeSimulator;
using tarvo::test::Session;

namespace {

/// An observer on the network, whose own lines stay few, with a simulator and the manager under test.
struct ReportingSession : Session
{
    std::unique_ptr<UserAircraftManager> aircraft;
    bool online = false;

    ReportingSession()
    {
        aircraft = std::make_unique<UserAircraftManager>(manager);
        addSimulator();
        online = connectObserver();
        online = online && peer.skip(3);
    }

    void sample(const UserAircraftConfigData &data) const { emit sim->userAircraftConfigDataChanged(data); }
    void addToken() const
    {
        QMetaObject::invokeMethod(aircraft->findChild<QTimer *>(QStringLiteral("configurationBudgetTimer")), "timeout");
    }
};

const QString toAll = u"$CQAB1:@94386:ACC:"_qs;

} // namespace

class UserAircraftManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void theFirstSampleSendsNothing()
    {
        ReportingSession s;
        QVERIFY(s.online);
        s.sample({.gearDown = true});
        QVERIFY(s.peer.expectNothing());
    }

    void changesGoToAll()
    {
        ReportingSession s;
        QVERIFY(s.online);
        s.sample({.engineCount = 2, .gearDown = true});
        s.sample({.engineCount = 2, .gearDown = true, .speedbrakeArmed = true}); // nobody is told of that
        s.sample({.engineCount = 2, .engine1Running = true, .gearDown = true});
        EXPECT_LINE(s, toAll + uR"({"config":{"engines":{"1":{"on":true}}}})"_qs);
        s.sample({.navLightsOn = true, .engineCount = 2, .engine1Running = true, .flapsRatio = 0.57});
        EXPECT_LINE(s, toAll + uR"({"config":{"lights":{"nav_on":true},"gear_down":false,"flaps_pct":55}})"_qs);
        QVERIFY(s.peer.expectNothing());
    }

    void flapsWithinAStepSendNothing()
    {
        ReportingSession s;
        QVERIFY(s.online);
        s.sample({.flapsRatio = 0.5});
        s.sample({.flapsRatio = 0.549});
        QVERIFY(s.peer.expectNothing());
    }

    void whatCannotBeIsWhatItWas()
    {
        ReportingSession s;
        QVERIFY(s.online);
        s.sample({.flapsRatio = 0.5, .speedbrakeRatio = 0.5});
        for (const double value : {std::numeric_limits<double>::quiet_NaN(), 11.0, -11.0})
            s.sample({.flapsRatio = value, .speedbrakeRatio = value});
        QVERIFY(s.peer.expectNothing());
    }

    void elevenChangesSendTenMessages()
    {
        ReportingSession s;
        QVERIFY(s.online);
        s.sample({});
        bool gear = false;
        for (int i = 0; i < 11; ++i) {
            gear = !gear;
            s.sample({.gearDown = gear});
        }
        for (int i = 0; i < 10; ++i)
            EXPECT_LINE(s, toAll + uR"({"config":{"gear_down":%1}})"_qs.arg(i % 2 == 0 ? u"true"_qs : u"false"_qs));
        QVERIFY(s.peer.expectNothing());

        s.addToken(); // the next sample compares again
        QVERIFY(s.peer.expectNothing());
        s.sample({.gearDown = gear});
        EXPECT_LINE(s, toAll + uR"({"config":{"gear_down":true}})"_qs);
        s.sample({.gearDown = !gear});
        QVERIFY(s.peer.expectNothing()); // spent again
    }

    void tokensGrowBackToTen()
    {
        ReportingSession s;
        QVERIFY(s.online);
        for (int i = 0; i < 20; ++i)
            s.addToken();
        bool gear = false;
        for (int i = 0; i < 13; ++i) {
            gear = !gear;
            s.sample({.gearDown = gear});
        }
        for (int i = 0; i < 10; ++i)
            QVERIFY(s.peer.nextLine().startsWith(toAll));
        QVERIFY(s.peer.expectNothing());
    }

    void theWholeConfigurationGoesToTheOneWhoAsks()
    {
        ReportingSession s;
        QVERIFY(s.online);
        s.sample({.navLightsOn = true, .engineCount = 1, .engine1Running = true, .gearDown = true, .onGround = true});
        s.peer.inject(uR"($CQab2:AB1:ACC:{"request":"full"})"_qs);
        EXPECT_LINE(s, uR"($CQAB1:ab2:ACC:{"config":{"is_full_data":true,"lights":{"strobe_on":false,)"
                       uR"("landing_on":false,"taxi_on":false,"beacon_on":false,"nav_on":true},)"
                       uR"("engines":{"1":{"on":true,"is_reversing":false}},"gear_down":true,"flaps_pct":0,)"
                       uR"("spoilers_out":false,"on_ground":true}})"_qs);
    }

    void ofALostSimulatorTheLastConfigurationHolds_data()
    {
        QTest::addColumn<bool>("replaced");
        QTest::newRow("lost") << false;
        QTest::newRow("another in its place") << true;
    }

    void ofALostSimulatorTheLastConfigurationHolds()
    {
        QFETCH(bool, replaced);
        ReportingSession s;
        QVERIFY(s.online);
        emit s.sim->simConnectionStateChanged(true);
        s.sample({.gearDown = true, .onGround = true});
        if (replaced) {
            s.sim = std::make_shared<FakeSimulator>();
            s.manager->setSimulator(s.sim);
        } else {
            emit s.sim->simConnectionStateChanged(false);
        }
        s.sample({});                                 // cleared, as a simulator does that is lost or new
        emit s.sim->simConnectionStateChanged(false); // once more, or of the new one
        QVERIFY(s.peer.expectNothing());
        s.peer.inject(uR"($CQAB2:AB1:ACC:{"request":"full"})"_qs);
        const QString answer = s.peer.nextLine();
        QVERIFY2(answer.contains(uR"("gear_down":true)"_qs) && answer.contains(uR"("on_ground":true)"_qs),
                 qPrintable(answer));

        s.sample({.gearDown = true});
        emit s.sim->simConnectionStateChanged(true);
        EXPECT_LINE(s, toAll + uR"({"config":{"on_ground":false}})"_qs);
        s.sample({});
        EXPECT_LINE(s, toAll + uR"({"config":{"gear_down":false}})"_qs);
    }

    void otherConfigurationTextsAreNotAnswered_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("configuration") << uR"({"config":{"gear_down":true}})"_qs;
        QTest::newRow("no JSON") << u"hello"_qs;
        QTest::newRow("other request") << uR"({"request":"some"})"_qs;
    }

    void otherConfigurationTextsAreNotAnswered()
    {
        QFETCH(QString, text);
        ReportingSession s;
        QVERIFY(s.online);
        s.peer.inject(u"$CQAB2:AB1:ACC:"_qs + text);
        QVERIFY(s.peer.expectNothing());
    }

    void modeC_data()
    {
        QTest::addColumn<QString>("script"); // g: on ground, a: in the air, c: mode C on, x: lost, o: connected
        QTest::addColumn<int>("toggles");
        QTest::newRow("take-off in standby") << u"oga"_qs << 1;
        QTest::newRow("take-off with mode C") << u"ocga"_qs << 0;
        QTest::newRow("once for each take-off") << u"ogaaa"_qs << 1;
        QTest::newRow("touch and go") << u"ogaga"_qs << 2;
        QTest::newRow("first sample in the air") << u"oa"_qs << 0;
        QTest::newRow("in the air all the time") << u"oaaa"_qs << 0;
        QTest::newRow("never connected") << u"ga"_qs << 0;
        QTest::newRow("reconnect in the air") << u"ogaxoa"_qs << 1;
        QTest::newRow("lost on the ground, back in the air") << u"ogxoa"_qs << 0;
        QTest::newRow("airborne is noted while lost") << u"ogxaoa"_qs << 0;
        QTest::newRow("landed while lost") << u"oagxgoga"_qs << 1;
    }

    void modeC()
    {
        QFETCH(QString, script);
        QFETCH(int, toggles);
        Session s;
        const UserAircraftManager aircraft(s.manager);
        s.sim = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(s.sim);
        for (const QChar step : script) {
            if (step == u'g' || step == u'a')
                emit s.sim->userAircraftConfigDataChanged({.onGround = step == u'g'});
            else if (step == u'o' || step == u'x')
                emit s.sim->simConnectionStateChanged(step == u'o');
            else
                emit s.sim->radioStackStateChanged({.squawkingModeC = true});
        }
        QCOMPARE(s.sim->calls.count(u"transponderModeToggle"_qs), toggles);
    }

    void aNewSimulatorTakesTheOldOnesPlace()
    {
        Session s;
        const UserAircraftManager aircraft(s.manager);
        s.addSimulator();
        const std::weak_ptr<FakeSimulator> old = s.sim;
        emit s.sim->userAircraftConfigDataChanged({.onGround = true});
        emit s.sim->radioStackStateChanged({.squawkingModeC = true}); // says nothing about the next one
        const auto next = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(next);
        emit s.sim->userAircraftConfigDataChanged({.onGround = false}); // heard by nobody
        s.sim.reset();
        TRY_VERIFY(old.expired());
        emit next->simConnectionStateChanged(true);
        emit next->userAircraftConfigDataChanged({.onGround = false}); // its first sample, in the air
        QCOMPARE(next->calls.count(u"transponderModeToggle"_qs), 0);
        emit next->userAircraftConfigDataChanged({.onGround = true});
        emit next->userAircraftConfigDataChanged({.onGround = false});
        QCOMPARE(next->calls.count(u"transponderModeToggle"_qs), 1);
    }

    void aSimulatorThatIsReplacedWhenItsTransponderIsSwitched()
    {
        Session s;
        const UserAircraftManager aircraft(s.manager);
        s.addSimulator();
        const std::weak_ptr<FakeSimulator> old = s.sim;
        const auto next = std::make_shared<FakeSimulator>();
        bool alive = false;
        s.sim->onCall = [&](const QString &call) {
            if (call != u"transponderModeToggle"_qs)
                return;
            s.sim.reset();
            s.manager->setSimulator(next);
            alive = !old.expired(); // until it has returned from the call
        };
        emit s.sim->userAircraftConfigDataChanged({.onGround = true});
        emit s.sim->userAircraftConfigDataChanged({.onGround = false});
        QVERIFY(alive);
        TRY_VERIFY(old.expired());
        QCOMPARE(s.manager->simulator(), next);
    }

    void aSimulatorThatWasThereBeforeIsHeard()
    {
        Session s;
        s.addSimulator();
        const UserAircraftManager aircraft(s.manager);
        emit s.sim->simConnectionStateChanged(true);
        emit s.sim->userAircraftConfigDataChanged({.onGround = true});
        emit s.sim->userAircraftConfigDataChanged({.onGround = false});
        QCOMPARE(s.sim->calls.count(u"transponderModeToggle"_qs), 1);
    }
};

TARVO_TEST(UserAircraftManagerTest)
#include "UserAircraftManagerTest.moc"
