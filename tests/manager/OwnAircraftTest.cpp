#include "manager/Plausible.h"
#include "manager/TrafficSession.h"
#include "support/TestRegistry.h"

#include <limits>

using namespace tarvo;
using tarvo::manager::NetworkManager;
using tarvo::manager::plausible;
using tarvo::manager::plausibleAltitude;
using tarvo::manager::SimulatorData;
using tarvo::model::UserAircraftData;
using tarvo::test::FakeSimulator;
using tarvo::test::TrafficSession;

namespace {

const QString zeroVelocities = u"0.0000:0.0000:0.0000:0.0000:0.0000:0.0000:0.00"_qs;

/// A pilot at 40 N, 116.5 E, 1,000 ft, 900 ft by pressure, who squawks 2000 with mode C.
struct FlyingSession : TrafficSession
{
    UserAircraftData aircraft = standing();

    FlyingSession()
    {
        sim->trueAltitude = 1000;
        sim->pressureAltitude = 900;
        emit sim->userAircraftConfigDataChanged({.gearDown = true});
        emit sim->radioStackStateChanged({.squawkingModeC = true, .transponderCode = 2000});
        aircraft.groundSpeed = 120;
        aircraft.heading = 90;
        aircraft.latitudeVelocity = 60;
        emit sim->userAircraftDataChanged(aircraft);
    }

    /// What X-Plane's loss looks like from here.
    void loseSimulator()
    {
        emit sim->simConnectionStateChanged(false);
        sim->trueAltitude = sim->pressureAltitude = 0;
        emit sim->userAircraftDataChanged({});
    }

    QStringList linesOf(const char *timer)
    {
        QStringList lines;
        if (!fire(timer))
            return lines;
        lines << peer.nextLine();
        if (lines.constLast().startsWith(u'^') && QLatin1StringView(timer) == QLatin1StringView("slowTimer"))
            lines << peer.nextLine();
        return lines;
    }

    static inline const QString slowLine = u"@N:AB1:2000:1:40.000000:116.500000:1000:120:1024:-100"_qs;
    static inline const QString heldLine = u"^AB1:40.000000:116.500000:1000.00:900.00:1024:"_qs + zeroVelocities;
};

} // namespace

/// What is taken of what the simulator says, and what is reported when it says nothing any more.
class OwnAircraftTest : public QObject
{
    Q_OBJECT

private slots:
    // --- values that can't be ---

    void everyFieldOfTheAircraftIsWatched_data()
    {
        QTest::addColumn<double>("value");
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
        QTest::newRow("FLT_MAX") << double(std::numeric_limits<float>::max());
        QTest::newRow("-2^31") << -2147483648.0;
    }

    void everyFieldOfTheAircraftIsWatched()
    {
        QFETCH(double, value);
        const UserAircraftData last{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18};
        const UserAircraftData broken{value, value, value, value, value, value, value, value, value,
                                      value, value, value, value, value, value, value, value, value};
        QCOMPARE(plausible(broken, last), last);
        QCOMPARE(plausible(broken, UserAircraftData{}), UserAircraftData{});
        QCOMPARE(plausible(last, UserAircraftData{}), last);
        QCOMPARE(plausibleAltitude(value, 123), 123.0);
        QCOMPARE(plausibleAltitude(-900, 123), -900.0);
        const model::UserAircraftConfigData ratios{.flapsRatio = value, .speedbrakeRatio = value};
        const model::UserAircraftConfigData half{.flapsRatio = 0.5, .speedbrakeRatio = 0.25};
        QCOMPARE(plausible(ratios, half), half);
        QCOMPARE(plausible(half, {}), half);
    }

    void everyNumberOfTheRadiosIsWatched()
    {
        constexpr quint32 absurd = 1U << 31;
        const model::RadioStackState last{.com1Frequency = 118500,
                                          .com1StandbyFrequency = 118505,
                                          .com1Volume = 70,
                                          .com2Frequency = 121700,
                                          .com2StandbyFrequency = 121705,
                                          .com2Volume = 80,
                                          .transponderCode = 2000};
        const model::RadioStackState broken{.com1Frequency = absurd,
                                            .com1StandbyFrequency = absurd,
                                            .com1Volume = absurd,
                                            .com2Frequency = absurd,
                                            .com2StandbyFrequency = absurd,
                                            .com2Volume = absurd,
                                            .transponderCode = 65535};
        QCOMPARE(plausible(broken, last), last);
        QCOMPARE(plausible(last, {}), last);
    }

    void whatCannotBeNeverReachesTheWire_data()
    {
        QTest::addColumn<double>("value");
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("infinite") << -std::numeric_limits<double>::infinity();
        QTest::newRow("2^31") << 2147483648.0;
    }

    void whatCannotBeNeverReachesTheWire()
    {
        QFETCH(double, value);
        FlyingSession s;
        QVERIFY(s.online);
        s.aircraft.latitudeVelocity = 0; // it stands, and reports only its position
        emit s.sim->userAircraftDataChanged(s.aircraft);
        QCOMPARE(s.linesOf("slowTimer"), QStringList{FlyingSession::slowLine});
        UserAircraftData broken = s.aircraft;
        broken.latitude = broken.longitude = broken.groundSpeed = broken.heading = value;
        s.sim->trueAltitude = s.sim->pressureAltitude = value;
        emit s.sim->userAircraftDataChanged(broken);
        QCOMPARE(s.linesOf("slowTimer"), QStringList{FlyingSession::slowLine});
        s.peer.inject(u"$CQAB2:AB1:INF"_qs);
        QVERIFY(s.peer.nextLine().endsWith(u" LT=40 LO=116.5 AL=0"_qs));
    }

    void aValueThatCannotBeIsNoSignOfLife()
    {
        FlyingSession s;
        QVERIFY(s.online);
        QSignalSpy updates(s.manager.get(), &NetworkManager::simulatorDataUpdated);
        QSignalSpy states(s.manager.get(), &NetworkManager::simulatorConnectionStateChanged);
        UserAircraftData broken = s.aircraft;
        broken.bank = std::numeric_limits<double>::quiet_NaN();
        s.clock.advance(3001);
        emit s.sim->userAircraftDataChanged(broken);
        QCOMPARE(updates.size(), 0);
        QVERIFY(s.fire("dataWatchdog"));
        QCOMPARE(states.size(), 1);
        QCOMPARE(states.at(0).at(0).toBool(), false);
    }

    // --- a pause ---

    void aPauseIsNoSilence()
    {
        FlyingSession s;
        QVERIFY(s.online);
        QSignalSpy states(s.manager.get(), &NetworkManager::simulatorConnectionStateChanged);
        emit s.sim->simPausedStateChanged(true);
        for (int i = 0; i < 20; ++i) {
            s.clock.advance(500);
            QVERIFY(s.fire("dataWatchdog"));
        }
        QCOMPARE(states.size(), 0);
        emit s.sim->simPausedStateChanged(false);
        s.clock.advance(3000); // the silence counts from the pause's end
        QVERIFY(s.fire("dataWatchdog"));
        QCOMPARE(states.size(), 0);
        s.clock.advance(1);
        QVERIFY(s.fire("dataWatchdog"));
        QCOMPARE(states.size(), 1);
    }

    void aPauseMakesNoDataValid()
    {
        test::Session s;
        s.addSimulator();
        emit s.sim->simConnectionStateChanged(false);
        emit s.sim->simPausedStateChanged(true);
        QVERIFY(s.fire("dataWatchdog"));
        QVERIFY(!s.connectPilot());
    }

    // --- a simulator that is lost ---

    void aLostSimulatorIsHeldWhereItWas_data()
    {
        QTest::addColumn<QString>("how");
        for (const char *how : {"cleared", "silent", "silent and cleared", "replaced"})
            QTest::newRow(how) << QLatin1StringView(how).toString();
    }

    void aLostSimulatorIsHeldWhereItWas()
    {
        QFETCH(QString, how);
        FlyingSession s;
        QVERIFY(s.online);
        if (how == u"cleared"_qs)
            s.loseSimulator();
        if (how.startsWith(u"silent"_qs)) {
            s.clock.advance(3001);
            QVERIFY(s.fire("dataWatchdog"));
        }
        if (how == u"silent and cleared"_qs)
            emit s.sim->userAircraftDataChanged({});
        if (how == u"replaced"_qs)
            s.manager->setSimulator(std::make_shared<FakeSimulator>());
        QCOMPARE(s.linesOf("slowTimer"), (QStringList{FlyingSession::heldLine, FlyingSession::slowLine}));
        s.peer.inject(u"$SFSERVER:AB1:1"_qs);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.linesOf("fastTimer"), QStringList{FlyingSession::heldLine});
    }

    void whatWasToldLastIsHeld()
    {
        FlyingSession s;
        QVERIFY(s.online);
        emit s.sim->userAircraftConfigDataChanged({.onGround = true});
        s.loseSimulator();
        QVERIFY(s.linesOf("slowTimer").value(1).endsWith(u":1026:-100"_qs));
        FlyingSession another;
        QVERIFY(another.online);
        emit another.sim->radioStackStateChanged({.squawkingModeC = true, .transponderCode = 7000});
        another.loseSimulator();
        QVERIFY(another.linesOf("slowTimer").value(1).startsWith(u"@N:AB1:7000:"_qs));
    }

    void dataThatAreBackAreReportedWhenAllAre()
    {
        FlyingSession s;
        QVERIFY(s.online);
        const QStringList held{FlyingSession::heldLine, FlyingSession::slowLine};
        for (int i = 0; i < 2; ++i) { // and lost again meanwhile
            s.loseSimulator();
            emit s.sim->simConnectionStateChanged(true); // data are back with the first live sample
            emit s.sim->userAircraftDataChanged({.latitude = 41, .longitude = 117});
            s.clock.advance(1499); // altitude and radios are still to come
            QCOMPARE(s.linesOf("slowTimer"), held);
        }
        s.sim->trueAltitude = 2000;
        emit s.sim->radioStackStateChanged({.transponderCode = 7000});
        s.clock.advance(1);
        QCOMPARE(s.linesOf("slowTimer"), QStringList{u"@S:AB1:7000:1:41.000000:117.000000:2000:0:0:-2000"_qs});
    }

    void anotherSimulatorTellsEverythingItself()
    {
        FlyingSession s;
        QVERIFY(s.online);
        const auto next = std::make_shared<FakeSimulator>();
        next->trueAltitude = next->pressureAltitude = std::numeric_limits<double>::quiet_NaN();
        s.manager->setSimulator(next);
        emit next->simConnectionStateChanged(true);
        emit next->userAircraftDataChanged({.latitude = 41, .longitude = 117});
        s.clock.advance(1500);
        QCOMPARE(s.linesOf("slowTimer"), QStringList{u"@S:AB1:0:1:41.000000:117.000000:0:0:0:0"_qs});
    }

    void aLinkThatReturnsBeforeItsDataReportsNothingOfThem()
    {
        FlyingSession s;
        QVERIFY(s.online);
        emit s.sim->simConnectionStateChanged(false);
        s.sim->trueAltitude = s.sim->pressureAltitude = 0; // cleared, and not published yet
        emit s.sim->simConnectionStateChanged(true);
        s.clock.advance(2000);
        QCOMPARE(s.linesOf("slowTimer"), (QStringList{FlyingSession::heldLine, FlyingSession::slowLine}));
    }

    void aSecondSessionHoldsAnAircraftThatHasNotMovedSince()
    {
        FlyingSession s;
        QVERIFY(s.online);
        s.manager->disconnectFromNetwork();
        QVERIFY(s.peer.waitForClose());
        QVERIFY(s.connectPilot());
        QVERIFY(s.peer.waitForConnection(2));
        QVERIFY(s.peer.skip(4));
        s.loseSimulator();
        QCOMPARE(s.linesOf("slowTimer"), (QStringList{FlyingSession::heldLine, FlyingSession::slowLine}));
    }

    void thePlaceIsForgottenWithTheSession()
    {
        FlyingSession s;
        QVERIFY(s.online);
        s.loseSimulator();
        s.manager->disconnectFromNetwork();
        QVERIFY(s.peer.waitForClose());
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.waitForConnection(2));
        QVERIFY(s.peer.skip(2));
        EXPECT_LINE(s, u"%AB1:99998:0:40:1:0.00000:0.00000:0"_qs);
    }
};

TARVO_TEST(OwnAircraftTest)
#include "OwnAircraftTest.moc"
