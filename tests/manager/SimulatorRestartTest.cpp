#include "manager/ControllerManager.h"
#include "manager/CrowdedSession.h"
#include "manager/UserAircraftManager.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QEventLoop>

using namespace tarvo;
using namespace tarvo::test;
using tarvo::manager::NetworkManager;
using State = tarvo::model::RemoteAircraft::State;

namespace {

/// AB2 flies and is in the simulator, by both roads, with gear down and lights on by two messages.
struct ShownSession : CrowdedSession
{
    manager::ControllerManager controllers{manager, clock};
    manager::UserAircraftManager own{manager};
    bool shown = false;

    ShownSession()
    {
        emit manager->networkConnected(u"AB1"_qs);
        shown = online && meetAb2(0) && feed(configuration(fullGearDown)) &&
                feed(configuration(uR"({"config":{"flaps_pct":20}})"_qs));
        emit sim->aircraftAddedToSim(ab2);
        emit sim->radioStackStateChanged({.com1Frequency = 118500});
        emit manager->controllerUpdateReceived(u"ZBAA_TWR"_qs, 118500, 40, 116);
        (void)peer.nextLine();
        (void)peer.nextLine();
        (void)peer.nextLine();
        sim->takeCalls();
        sim->told.clear();
    }
};

} // namespace

/// Simulators whose end of the link begins anew, that take an aircraft away, or that are replaced from within.
class SimulatorRestartTest : public QObject
{
    Q_OBJECT

private slots:
    void aSimulatorThatBeginsAnewIsGivenEverything()
    {
        ShownSession s;
        QVERIFY(s.shown);
        emit s.sim->restarted();
        QCOMPARE(s.sim->takeCalls(), (QStringList{u"removeAllAircraft"_qs, u"clearControllers"_qs, add, update, add,
                                                  update, u"setControllers 1"_qs, u"setStationCallsign 1 ZBAA_TWR"_qs,
                                                  u"setStationCallsign 2 "_qs}));
        // The last word is the merged configuration.
        const model::AircraftConfiguration last = s.sim->told.constLast().aircraft.configuration;
        QCOMPARE(last.gearDown, std::optional(true));
        QCOMPARE(last.flapsPct, std::optional(20));
        QVERIFY(s.peer.expectNothing()); // nothing is asked again
        QCOMPARE(s.known().state, State::InSimulator);
        QCOMPARE(s.record().state, State::Pending);
    }

    void aSimulatorThatIsReplacedIsGivenNothing()
    {
        ShownSession s;
        QVERIFY(s.shown);
        s.manager->setSimulator(std::make_shared<FakeSimulator>());
        s.sim->takeCalls();
        emit s.sim->restarted();
        QCOMPARE(s.sim->takeCalls(), QStringList());
    }

    void oneThatIsReplacedAsItComesIsGivenNothing()
    {
        ShownSession s;
        QVERIFY(s.shown);
        const auto first = std::make_shared<FakeSimulator>();
        const auto second = std::make_shared<FakeSimulator>();
        connect(s.manager.get(), &manager::NetworkManager::simulatorConnectionStateChanged, second.get(), [&] {
            if (s.manager->simulator() == first)
                s.manager->setSimulator(second);
        });
        s.manager->setSimulator(first);
        QCOMPARE(first->calls.count(add), 0);
        QCOMPARE(second->calls.count(add), 1);
    }

    void aRestartInTheAirIsNoTakeOff()
    {
        test::Session s;
        s.addSimulator();
        const manager::UserAircraftManager own(s.manager);
        emit s.sim->simConnectionStateChanged(true);
        emit s.sim->userAircraftConfigDataChanged({.onGround = true});
        emit s.sim->restarted();
        emit s.sim->userAircraftConfigDataChanged({.onGround = false});
        QVERIFY(!s.sim->calls.contains(u"transponderModeToggle"_qs));
    }

    void oneThatWasTakenAwayIsNewWhenItIsHeardAgain()
    {
        ShownSession s;
        QVERIFY(s.shown);
        s.clock.advance(15'001);
        s.fire("staleTimer");
        QCOMPARE(s.sim->takeCalls(), QStringList{stale});
        emit s.sim->aircraftRemovedFromSim(u"ab2"_qs);
        QCOMPARE(s.known().state, State::New);
        QVERIFY(s.aircraft->aircraft().isEmpty());
        QCOMPARE(s.told(TrafficSession::configuration(gearUp)), QStringList()); // it may be anywhere by now
        s.peer.inject(TrafficSession::slow(ab2));
        TRY_COMPARE(s.known().state, State::InSimulator);
        QCOMPARE(s.sim->takeCalls().mid(0, 2), (QStringList{add, update}));
    }

    void aRemovalOfOneThatIsNotShownChangesNothing()
    {
        TrafficSession s;
        QVERIFY(s.online);
        emit s.sim->aircraftRemovedFromSim(ab2); // of nobody
        QVERIFY(s.feed(TrafficSession::slow(ab2), TrafficSession::typeQuestions(ab2)));
        emit s.sim->aircraftRemovedFromSim(ab2);
        QCOMPARE(s.known().state, State::New);
        QVERIFY(s.feed(TrafficSession::planeInfo(), {TrafficSession::configurationQuestion(ab2)})); // it is added
    }

    void whyAnAircraftIsDrawnStandsInTheLog()
    {
        CrowdedSession s;
        QVERIFY(s.online);
        const LogCapture log;
        QVERIFY(s.meetAb2(0));
        QVERIFY(s.feed(TrafficSession::configuration(fullGearDown)));
        emit s.sim->aircraftAddedToSim(ab2);
        s.clock.advance(15'001);
        s.fire("staleTimer");
        QVERIFY(s.feed(u"#DPAB2:1002"_qs));
        QCOMPARE(log.ofCategory("tarvo.traffic"),
                 (QStringList{u"Traffic: asked AB2 by NetworkManager, its type is unknown"_qs,
                              u"Traffic: kept back AB2 by AircraftManager, no configuration, no type"_qs,
                              u"Traffic: typed AB2 by NetworkManager, B738 for \"B738\""_qs,
                              u"Traffic: added AB2 by NetworkManager, type B738"_qs,
                              u"Traffic: kept back AB2 by AircraftManager, no configuration"_qs,
                              u"Traffic: added AB2 by AircraftManager, type B738"_qs,
                              u"Traffic: removed AB2 by AircraftManager, Stale"_qs,
                              u"Traffic: removed AB2 by NetworkManager, Pilot disconnected"_qs,
                              u"Traffic: removed AB2 by AircraftManager, Deleted"_qs}));
    }

    void whyAnAircraftIsNotDrawnStandsInTheLog()
    {
        CrowdedSession s({u"AB3"_qs});
        QVERIFY(s.online);
        const LogCapture log;
        QVERIFY(s.feed(TrafficSession::slow(u"AB3"_qs), CrowdedSession::greeting(u"AB3"_qs)));
        QCOMPARE(log.ofCategory("tarvo.traffic").mid(1),
                 QStringList{u"Traffic: ignored AB3 by AircraftManager, it is on the ignore list"_qs});
        QVERIFY(s.feed(TrafficSession::configuration(fullGearDown, u"AB3"_qs)));
        QVERIFY(!log.ofCategory("tarvo.traffic").join(u'\n').contains(u"kept back AB3"_qs));
        QVERIFY(s.meetAb2(300));
        QVERIFY(s.feed(TrafficSession::configuration(fullGearDown)));
        QCOMPARE(log.ofCategory("tarvo.traffic").constLast(),
                 u"Traffic: kept back AB2 by AircraftManager, no fast position"_qs);
        QVERIFY(s.feed(TrafficSession::fast(ab2)));
        s.fire("syncTimer");
        s.clock.advance(10'001);
        s.fire("syncTimer");
        emit s.manager->networkDisconnected(false);
        QCOMPARE(
            log.ofCategory("tarvo.traffic").mid(log.ofCategory("tarvo.traffic").size() - 4),
            (QStringList{u"Traffic: added AB2 by AircraftManager, type B738"_qs,
                         u"Traffic: given up AB2 by AircraftManager, the simulator has not confirmed its addition"_qs,
                         u"Traffic: added AB2 by AircraftManager, type B738"_qs,
                         u"Traffic: removed all by AircraftManager, Disconnected"_qs}));
    }

    void aSimulatorThatIsReplacedWithinItsSignalLivesUntilThen_data()
    {
        QTest::addColumn<QString>("within");
        for (const char *within : {"plugin", "csl", "mapping", "failed", "state"})
            QTest::newRow(within) << QLatin1StringView(within).toString();
    }

    void aSimulatorThatIsReplacedWithinItsSignalLivesUntilThen()
    {
        QFETCH(QString, within);
        test::Session s;
        s.addSimulator();
        FakeSimulator *raw = s.sim.get();
        const std::weak_ptr<FakeSimulator> old = s.sim;
        s.sim.reset();
        const NetworkManager *m = s.manager.get();
        const auto replace = [&s] { s.manager->setSimulator(std::make_shared<FakeSimulator>()); };
        if (within == u"plugin"_qs)
            connect(m, &NetworkManager::simulatorPluginStatusUpdated, this, replace);
        else if (within == u"csl"_qs)
            connect(m, &NetworkManager::simulatorCslStatusUpdated, this, replace);
        else if (within == u"mapping"_qs)
            connect(m, &NetworkManager::simulatorTrafficMappingStatusUpdated, this, replace);
        else if (within == u"failed"_qs)
            connect(m, &NetworkManager::simulatorConnectionFailed, this, replace);
        else
            connect(raw, &simulator::Simulator::simConnectionStateChanged, this, replace);
        emit raw->pluginVersionChecked(true);
        if (!old.expired())
            emit raw->cslValidationChecked(true);
        if (!old.expired())
            emit raw->trafficMappingStatusChanged(u"x"_qs);
        if (!old.expired())
            emit raw->simConnectionFailed(u"x"_qs);
        if (!old.expired())
            emit raw->simConnectionStateChanged(false);
        QVERIFY(!old.expired()); // it was about to go on when the signal had returned
        TRY_VERIFY(old.expired());
    }

    void aReplacedSimulatorOutlivesALookUpOnItsStack_data()
    {
        QTest::addColumn<bool>("replacedFirst");
        QTest::newRow("replaced, and then a name is looked up") << true;
        QTest::newRow("replaced while a name is looked up") << false;
    }

    void aReplacedSimulatorOutlivesALookUpOnItsStack()
    {
        QFETCH(bool, replacedFirst);
        test::Session s(test::Protocol::Classic, u"localhost"_qs);
        s.addSimulator();
        FakeSimulator *raw = s.sim.get();
        const std::weak_ptr<FakeSimulator> old = s.sim;
        s.sim.reset();
        bool alive = false;
        const auto replace = [&s] { s.manager->setSimulator(std::make_shared<FakeSimulator>()); };
        const auto turnTheLoop = [] { // as the look-up does, and long enough
            QEventLoop loop;
            QTimer::singleShot(0, &loop, [&loop] { QTimer::singleShot(0, &loop, &QEventLoop::quit); });
            loop.exec();
        };
        connect(raw, &simulator::Simulator::simConnectionFailed, this, [&] {
            if (replacedFirst)
                replace();
            QMetaObject::invokeMethod(
                this,
                [&] {
                    if (!replacedFirst)
                        replace();
                    turnTheLoop();
                    alive = !old.expired();
                },
                Qt::QueuedConnection);
            s.connectObserver(); // looks the name up
            alive = alive && !old.expired();
        });
        // From the event loop, which knows by that what is on its stack.
        QMetaObject::invokeMethod(
            this, [raw] { emit raw->simConnectionFailed(u"x"_qs); }, Qt::QueuedConnection);
        TRY_VERIFY(old.expired());
        QVERIFY(alive);
    }
};

TARVO_TEST(SimulatorRestartTest)
#include "SimulatorRestartTest.moc"
