#include "fsd/FsdClient.h"
#include "fsd/pdu/PilotPosition.h"
#include "manager/CrowdedSession.h"
#include "manager/RemoteAircraftTable.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using tarvo::manager::AircraftManager;
using tarvo::model::RemoteAircraft;
using State = tarvo::model::RemoteAircraft::State;

/// The list beside a simulator that is replaced, comes late, never answers or comes back within a call.
class AircraftManagerSimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void anotherSimulatorTakesTheOldOnesPlace()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        QVERIFY(s.feed(TrafficSession::configuration(fullGearDown)));
        s.sim = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(s.sim);
        QCOMPARE(s.sim->takeCalls(), (QStringList{add, update})); // NetworkManager has told all of it
        QVERIFY(s.feed(TrafficSession::configuration(uR"({"config":{"flaps_pct":20}})"_qs)));
        const std::weak_ptr<FakeSimulator> old = s.sim;
        const auto next = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(next);
        QCOMPARE(next->takeCalls(), (QStringList{add, update, update}));
        QCOMPARE(next->told.at(1).aircraft.configuration.gearDown, std::nullopt); // NetworkManager's: the last message
        QCOMPARE(next->told.at(2).aircraft.configuration.gearDown, true);
        emit s.sim->aircraftRemovedFromSim(ab2); // heard by nobody
        s.sim.reset();
        TRY_VERIFY(old.expired());
        QCOMPARE(s.aircraft->aircraft().size(), 1);
        emit next->aircraftAddedToSim(ab2);
        QCOMPARE(s.record().state, State::InSimulator);
        s.clock.advance(15'001);
        s.fire("staleTimer");
        QCOMPARE(next->calls.count(stale), 1);
    }

    void aSimulatorThatIsReplacedWithinASync_data()
    {
        QTest::addColumn<QString>("within");
        QTest::addColumn<QStringList>("calls");
        QTest::newRow("addition") << add << QStringList{add};
        QTest::newRow("configuration") << update << QStringList{add, update};
        QTest::newRow("removal") << stale << QStringList{stale};
    }

    void aSimulatorThatIsReplacedWithinASync()
    {
        QFETCH(QString, within);
        QFETCH(QStringList, calls);
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2AndAb3());
        const auto next = std::make_shared<FakeSimulator>();
        s.sim->onCall = [&s, &next, within](const QString &call) {
            if (call == within)
                s.manager->setSimulator(next);
        };
        if (within == stale) {
            s.clock.advance(15'001);
            s.fire("staleTimer");
        }
        QVERIFY(s.feed(u"#DPAB9:1009"_qs)); // adds both
        QCOMPARE(s.sim->calls, calls + QStringList({u"removeAllAircraft"_qs, u"clearControllers"_qs}));
        QCOMPARE(next->calls.count(u"addAircraft AB3"_qs), within == stale ? 2 : 1); // one is NetworkManager's
        QVERIFY(!next->calls.contains(u"removeAircraft AB3 Stale"_qs));
    }

    void oneThatGoesWithinASyncIsLeftOut_data()
    {
        QTest::addColumn<QString>("gone");
        QTest::addColumn<QStringList>("calls");
        QTest::newRow("the one that is added")
            << ab2 << QStringList{add, u"addAircraft AB3"_qs, u"updateAircraftConfiguration AB3"_qs};
        QTest::newRow("the next one") << u"AB3"_qs << QStringList{add, update};
    }

    void oneThatGoesWithinASyncIsLeftOut()
    {
        QFETCH(QString, gone);
        QFETCH(QStringList, calls);
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2AndAb3());
        FakeSimulator *sim = s.sim.get();
        sim->onCall = [sim, gone](const QString &call) {
            if (call == add)
                emit sim->aircraftRemovedFromSim(gone);
        };
        QCOMPARE(s.told(u"#DPAB9:1009"_qs), calls); // adds both
    }

    void withoutASimulatorNothingAges()
    {
        test::Session s;
        AircraftManager aircraft(s.manager, s.clock);
        emit s.manager->slowPositionUpdateReceived(ab2, {}, 0);
        emit s.manager->aircraftInfoReceived(ab2, u"B738"_qs, QString());
        emit s.manager->aircraftConfigurationInfoReceived(ab2, fullGearDown);
        emit s.manager->fastPositionUpdateReceived(ab2, {}, {}, {});
        emit s.manager->slowPositionUpdateReceived(ab2, {}, 0);
        s.clock.advance(60'000);
        QMetaObject::invokeMethod(aircraft.findChild<QTimer *>(u"staleTimer"_qs), "timeout");
        emit s.manager->pilotDeleted(ab2);
        QCOMPARE(aircraft.aircraft().size(), 1);
        QCOMPARE(aircraft.aircraft().at(0).state, State::New);
        s.sim = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(s.sim);
        emit s.manager->pilotDeleted(u"AB9"_qs);
        QCOMPARE(s.sim->takeCalls(), (QStringList{add, update}));
    }

    void aSimulatorThatWasThereBeforeIsTold()
    {
        test::Session s;
        s.addSimulator();
        const AircraftManager aircraft(s.manager, s.clock);
        emit s.manager->slowPositionUpdateReceived(ab2, {}, 0);
        emit s.manager->slowPositionUpdateReceived(ab2, {}, 0);
        QCOMPARE(s.sim->takeCalls(), QStringList{heartbeat});
    }

    void aSimulatorThatNeverAnswersFillsNothing()
    {
        test::Session s;
        s.addSimulator();
        const AircraftManager aircraft(s.manager, s.clock);
        fsd::pdu::PilotPosition position;
        position.From = ab2;
        emit s.manager->findChild<fsd::FsdClient *>()->raisePilotPositionReceived(position);
        const qsizetype room = manager::RemoteAircraftTable::maximumSize - 1; // beside AB2
        for (qsizetype i = 0; i < room + 5; ++i)
            emit s.manager->slowPositionUpdateReceived(u"X%1"_qs.arg(i), {}, 0);
        // NetworkManager knows AB2 alone, so that the others went when there was no room.
        QCOMPARE(aircraft.aircraft().size(), 6);
        QCOMPARE(aircraft.aircraft().at(0).callsign, ab2);
        QCOMPARE(aircraft.aircraft().at(1).callsign, u"X%1"_qs.arg(room));
    }
};

TARVO_TEST(AircraftManagerSimulatorTest)
#include "AircraftManagerSimulatorTest.moc"
