#include "manager/CrowdedSession.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using tarvo::model::RemoteAircraft;
using State = tarvo::model::RemoteAircraft::State;

/// The second record of each other aircraft, and what it adds to what NetworkManager tells the simulator.
class AircraftManagerTest : public QObject
{
    Q_OBJECT

private slots:
    // --- first and later positions ---

    void theFirstSlowPositionMakesARecord()
    {
        CrowdedSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(u"#SBAB2:AB1:PI:GEN:EQUIPMENT=:LIVERY=blue:CSL=M"_qs));
        QVERIFY(s.feed(TrafficSession::slow(u" ab2"_qs, 240), CrowdedSession::greeting(ab2)));
        const RemoteAircraft record = s.record();
        QCOMPARE(record.callsign, ab2);
        QCOMPARE(record.livery, u"BLUE"_qs); // as NetworkManager knows
        QCOMPARE(record.remoteModelHint, u"M"_qs);
        QCOMPARE(record.visualState, s.known().visualState);
        QCOMPARE(record.visualState.latitude, 40.5);
        QCOMPARE(record.groundSpeed, 240.0);
        QCOMPARE(record.lastUpdate.toMSecsSinceEpoch(), s.clock.wallMs());
        QCOMPARE(record.state, State::New);
        QCOMPARE(record.typeCode, QString());
        QCOMPARE(s.sim->takeCalls(), QStringList());
    }

    void inTokenModeTheTextIsSentToo()
    {
        CrowdedSession s;
        QVERIFY(s.online);
        s.config.set(config::authVatsim, true);
        const QString text = TrafficSession::textQuestion(ab2);
        QStringList lines = CrowdedSession::greeting(ab2);
        lines.insert(2, text);
        lines.append(text);
        QVERIFY(s.feed(TrafficSession::slow(ab2), lines));
    }

    void aFastPositionMakesNoRecord()
    {
        CrowdedSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::fast(ab2), TrafficSession::typeQuestions(ab2)));
        QVERIFY(s.aircraft->aircraft().isEmpty());
    }

    void laterSlowPositions()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(250));
        s.clock.advance(5000);
        QCOMPARE(s.told(TrafficSession::slow(ab2, 230, u"41.25"_qs)), (QStringList{move, heartbeat}));
        QCOMPARE(s.record().groundSpeed, 230.0);
        QCOMPARE(s.record().visualState.latitude, 41.25);
        QCOMPARE(s.record().lastUpdate.toMSecsSinceEpoch(), s.clock.wallMs());
        QCOMPARE(s.aircraft->aircraft().size(), 1);
    }

    void fastPositions()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(250));
        s.clock.advance(5);
        s.sim->told.clear();
        QCOMPARE(s.told(TrafficSession::fast(ab2, u"^"_qs, u"30:5:40"_qs, u"42.75"_qs)),
                 (QStringList{moveFast, moveFast}));
        QCOMPARE(s.record().visualState.latitude, 42.75);
        QVERIFY(s.record().fastSeen);
        QCOMPARE(s.record().groundSpeed, 250.0); // only a slow one tells it
        QCOMPARE(s.record().lastUpdate.toMSecsSinceEpoch(), s.clock.wallMs());
        QCOMPARE(s.sim->told[1].aircraft, s.record());
        QCOMPARE(s.sim->told[1].state, s.sim->told[0].state);
        QCOMPARE(s.sim->told[1].positional, (model::VelocityVector{30, 5, 40}));
        QCOMPARE(s.sim->told[1].rotational, (model::VelocityVector{0.1, 0.2, 0.3}));
    }

    // --- into the simulator ---

    void oneThatStandsIsAddedAtOnce_data()
    {
        QTest::addColumn<double>("groundSpeed");
        QTest::addColumn<QStringList>("calls");
        QTest::newRow("standing") << 0.0 << QStringList{update, add, update};
        QTest::newRow("half a knot") << 0.5 << QStringList{update, add, update};
        QTest::newRow("moving") << 0.51 << QStringList{update, update};
        QTest::newRow("300 knots") << 300.0 << QStringList{update, update};
        QTest::newRow("pushed back") << -3.0 << QStringList{update, add, update};
    }

    void oneThatStandsIsAddedAtOnce()
    {
        QFETCH(double, groundSpeed);
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(300));
        emit s.manager->slowPositionUpdateReceived(ab2, {}, groundSpeed);
        QTEST(s.told(TrafficSession::configuration(fullGearDown)), "calls");
    }

    void oneThatMovesWaitsForItsFirstFastPosition()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(300));
        QCOMPARE(s.told(TrafficSession::configuration(fullGearDown)), (QStringList{update, update}));
        QCOMPARE(s.told(TrafficSession::slow(ab2, 300)), (QStringList{move, heartbeat}));
        QCOMPARE(s.told(TrafficSession::fast(ab2)), (QStringList{moveFast, moveFast})); // adds nothing itself
        s.clock.advance(7);
        s.sim->told.clear();
        QCOMPARE(s.told(TrafficSession::slow(ab2, 300)), (QStringList{move, heartbeat, add, update}));
        const RemoteAircraft added = s.sim->told[1].aircraft;
        QCOMPARE(added.typeCode, u"B738"_qs);
        QCOMPARE(added.visualState, s.known().visualState);
        QCOMPARE(added.configuration.gearDown, std::optional(true));
        QCOMPARE(s.record().state, State::Pending);
        QCOMPARE(s.record().lastStateChange.toMSecsSinceEpoch(), s.clock.wallMs());
    }

    void aConfigurationThatCompletesItAddsIt()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(300));
        QVERIFY(s.feed(TrafficSession::fast(ab2)));
        QCOMPARE(s.told(TrafficSession::configuration(fullGearDown)), (QStringList{update, add, update}));
    }

    void aTypeThatCompletesItAddsIt()
    {
        CrowdedSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::slow(ab2, 0), CrowdedSession::greeting(ab2)));
        QCOMPARE(s.told(TrafficSession::configuration(fullGearDown)), QStringList{update}); // not ready
        s.sim->told.clear();
        QCOMPARE(s.told(u"#SBAB2:AB1:PI:GEN:EQUIPMENT=B738:AIRLINE=CES:LIVERY=swift_x"_qs),
                 (QStringList{add, update, add, update}));
        const RemoteAircraft added = s.sim->told[2].aircraft;
        QCOMPARE(added.airline, u"CES"_qs);
        QCOMPARE(added.livery, u"SWIFT_X"_qs);
        QCOMPARE(added.remoteModelHint, u"SWIFT_X"_qs);
    }

    void anotherOnesEventAddsIt()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(300));
        QVERIFY(s.feed(TrafficSession::configuration(fullGearDown)));
        QVERIFY(s.feed(TrafficSession::fast(ab2)));
        QCOMPARE(s.told(u"#DPAB9:1009"_qs), (QStringList{add, update}));
    }

    void withoutAnAnswerItIsAddedAgain()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        QCOMPARE(s.told(TrafficSession::configuration(fullGearDown)), (QStringList{update, add, update}));
        s.clock.advance(10'000);
        QCOMPARE(s.told(u"#DPAB9:1009"_qs), QStringList());
        s.clock.advance(1);
        QCOMPARE(s.told(TrafficSession::slow(ab2, 0)), (QStringList{move, heartbeat})); // pending is not ready: no sync
        QCOMPARE(s.told(u"#DPAB9:1009"_qs), (QStringList{add, update}));
        QCOMPARE(s.record().state, State::Pending);
        QCOMPARE(s.record().lastStateChange.toMSecsSinceEpoch(), s.clock.wallMs());
    }

    void anAnswerEndsTheWait()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        QVERIFY(s.feed(TrafficSession::configuration(fullGearDown)));
        emit s.sim->aircraftAddedToSim(u"ab2"_qs);
        QCOMPARE(s.record().state, State::InSimulator);
        s.clock.advance(60'000);
        QCOMPARE(s.told(u"#DPAB9:1009"_qs), QStringList());
        emit s.sim->aircraftAddedToSim(u"AB9"_qs); // nobody's
        QCOMPARE(s.aircraft->aircraft().size(), 1);
    }

    void anAnswerWithinTheAdditionCounts()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        FakeSimulator *sim = s.sim.get();
        sim->onCall = [sim](const QString &call) {
            if (call == add)
                emit sim->aircraftAddedToSim(ab2);
        };
        QVERIFY(s.feed(TrafficSession::configuration(fullGearDown)));
        QCOMPARE(s.record().state, State::InSimulator);
    }

    // --- configurations ---

    void partsBeforeTheWholeAreIgnored()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        s.clock.advance(7);
        QCOMPARE(s.told(TrafficSession::configuration(gearUp)), QStringList{update}); // NetworkManager's
        QCOMPARE(s.record().lastUpdate.toMSecsSinceEpoch(), s.clock.wallMs());        // but a sign of life
        QVERIFY(!s.record().hasConfiguration);
        QCOMPARE(s.record().configuration, model::AircraftConfiguration());
    }

    void partsAreMerged()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        QVERIFY(s.feed(TrafficSession::configuration(
            uR"({"config":{"is_full_data":true,"lights":{"taxi_on":true,"nav_on":true},"gear_down":true}})"_qs)));
        s.sim->told.clear();
        QCOMPARE(s.told(TrafficSession::configuration(uR"({"config":{"lights":{"nav_on":false},"flaps_pct":5}})"_qs)),
                 (QStringList{update, update}));
        const model::AircraftConfiguration merged = s.sim->told[1].aircraft.configuration;
        QCOMPARE(merged, s.record().configuration);
        QCOMPARE(merged.gearDown, std::optional(true));
        QCOMPARE(merged.flapsPct, std::optional(5));
        QCOMPARE(merged.lights.navOn, std::optional(false));
        QCOMPARE(merged.lights.taxiOn, std::optional<bool>()); // one light copies all five
        QCOMPARE(merged.isFullData, std::optional(true));
        QCOMPARE(s.sim->told[0].aircraft.configuration.gearDown, std::optional<bool>()); // that one does not merge
    }

    void aWholeReplacesAll()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        QVERIFY(s.feed(TrafficSession::configuration(fullGearDown)));
        QVERIFY(s.feed(TrafficSession::configuration(uR"({"config":{"is_full_data":true,"flaps_pct":5}})"_qs)));
        QCOMPARE(s.record().configuration.gearDown, std::optional<bool>());
        QCOMPARE(s.record().configuration.flapsPct, std::optional(5));
    }

    void notWholeWhenItSaysSo()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        QVERIFY(s.feed(TrafficSession::configuration(uR"({"config":{"is_full_data":false,"gear_down":true}})"_qs)));
        QVERIFY(!s.record().hasConfiguration);
    }

    void otherTextsChangeNothing_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("request") << TrafficSession::configuration(uR"({"request":"full"})"_qs);
        QTest::newRow("no JSON") << TrafficSession::configuration(u"x"_qs);
        QTest::newRow("somebody unknown") << TrafficSession::configuration(fullGearDown, u"AB9"_qs);
    }

    void otherTextsChangeNothing()
    {
        QFETCH(QString, line);
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        const RemoteAircraft before = s.record();
        QCOMPARE(s.told(line), QStringList());
        QCOMPARE(s.record(), before);
    }

    // --- capabilities ---

    void capabilitiesAnswers_data()
    {
        QTest::addColumn<QString>("capabilities");
        QTest::addColumn<bool>("asked");
        QTest::newRow("configurations") << u"VERSION=1:ACCONFIG=1:X=1"_qs << true;
        QTest::newRow("none") << u"VERSION=1:ACCONFIG=0"_qs << false;
        QTest::newRow("nothing") << QString() << false;
    }

    void capabilitiesAnswers()
    {
        QFETCH(QString, capabilities);
        QFETCH(bool, asked);
        CrowdedSession s;
        QVERIFY(s.online);
        const QStringList answers = asked ? QStringList{TrafficSession::configurationQuestion(ab2)} : QStringList();
        QVERIFY(s.feed(u"$CRAB2:AB1:CAPS:"_qs + capabilities, answers));
    }

    void aCapabilitiesRequestAsksAgainBeforeItIsAnswered()
    {
        CrowdedSession s;
        QVERIFY(s.online);
        const QString answer = u"$CRAB1:%1:CAPS:VERSION=1:ATCINFO=1:MODELDESC=1:ACCONFIG=1:VISUPDATE=1"_qs;
        QVERIFY(s.feed(u"$CQab2:AB1:CAPS"_qs, {answer.arg(u"ab2"_qs)})); // unknown
        QVERIFY(s.meetAb2(0));
        QVERIFY(s.feed(u"$CQab2:AB1:CAPS"_qs, TrafficSession::typeQuestions(ab2) + QStringList{answer.arg(u"ab2"_qs)}));
    }

    // --- ignored ---

    void anIgnoredAircraftIsNeverToldOf()
    {
        CrowdedSession s({u"ab2"_qs});
        QVERIFY(s.online && s.meetAb2(0));
        QCOMPARE(s.record().state, State::Ignored);
        emit s.sim->aircraftAddedToSim(ab2); // NetworkManager knows no such list
        QCOMPARE(s.record().state, State::Ignored);
        QCOMPARE(s.told(TrafficSession::configuration(fullGearDown)), QStringList{update});
        emit s.sim->restarted();
        QCOMPARE(s.told(TrafficSession::slow(ab2, 0)), QStringList{move});
        QCOMPARE(s.told(TrafficSession::fast(ab2)), QStringList{moveFast});
        QVERIFY(!s.record().fastSeen);
        QVERIFY(s.feed(u"$CQAB2:AB1:CAPS"_qs,
                       {u"$CRAB1:AB2:CAPS:VERSION=1:ATCINFO=1:MODELDESC=1:ACCONFIG=1:VISUPDATE=1"_qs}));
        QCOMPARE(s.told(u"#DPAB2:1002"_qs), QStringList{u"removeAircraft AB2 Pilot disconnected"_qs});
        QVERIFY(s.aircraft->aircraft().isEmpty());
    }

    void anIgnoredAircraftFallsSilent()
    {
        CrowdedSession s({ab2});
        QVERIFY(s.online && s.meetAb2(0));
        s.clock.advance(15'001);
        s.fire("staleTimer");
        QCOMPARE(s.sim->takeCalls(), QStringList());
        QVERIFY(s.aircraft->aircraft().isEmpty());
    }

    void othersThanTheIgnoredAreNotAffected()
    {
        CrowdedSession s({u"AB"_qs, u"AB22"_qs});
        QVERIFY(s.online && s.meetAb2(0));
        QCOMPARE(s.record().state, State::New);
    }

    // --- leaving ---

    void theSilentAreTakenAway()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        s.clock.advance(15'000);
        s.fire("staleTimer");
        QCOMPARE(s.sim->takeCalls(), QStringList());
        s.clock.advance(1);
        s.fire("staleTimer");
        QCOMPARE(s.sim->takeCalls(), QStringList{stale});
        QCOMPARE(s.aircraft->aircraft().size(), 1); // until the simulator has let go of it
        s.fire("staleTimer");
        QCOMPARE(s.sim->takeCalls(), QStringList{stale});
        emit s.sim->aircraftRemovedFromSim(u"ab2"_qs);
        QVERIFY(s.aircraft->aircraft().isEmpty());
        s.fire("staleTimer");
        QCOMPARE(s.sim->takeCalls(), QStringList());
        // One that comes back is a new one.
        QVERIFY(s.feed(TrafficSession::slow(ab2, 0), CrowdedSession::greeting(ab2).mid(2)));
    }

    void aFastPositionKeepsItAlive()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        s.clock.advance(10'000);
        QVERIFY(s.feed(TrafficSession::fast(ab2)));
        s.clock.advance(10'000);
        s.sim->takeCalls();
        s.fire("staleTimer");
        QCOMPARE(s.sim->takeCalls(), QStringList());
    }

    void severalSilentOnesWhileTheSimulatorLetsGo()
    {
        CrowdedSession s;
        QVERIFY(s.online);
        for (const QString &callsign : {u"AB3"_qs, ab2, u"AB4"_qs})
            QVERIFY(s.feed(TrafficSession::slow(callsign), CrowdedSession::greeting(callsign)));
        FakeSimulator *sim = s.sim.get();
        sim->onCall = [sim](const QString &call) { emit sim->aircraftRemovedFromSim(call.split(u' ').value(1)); };
        s.clock.advance(15'001);
        s.fire("staleTimer");
        QCOMPARE(sim->takeCalls(),
                 (QStringList{u"removeAircraft AB3 Stale"_qs, stale, u"removeAircraft AB4 Stale"_qs}));
        QVERIFY(s.aircraft->aircraft().isEmpty());
    }

    void aDeletedPilotIsTakenAwayTwice()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        QCOMPARE(s.told(u"#DPAB2:1002"_qs),
                 (QStringList{u"removeAircraft AB2 Pilot disconnected"_qs, u"removeAircraft AB2 Deleted"_qs}));
        QCOMPARE(s.aircraft->aircraft().size(), 1);
        emit s.sim->aircraftRemovedFromSim(ab2);
        QVERIFY(s.aircraft->aircraft().isEmpty());
        QCOMPARE(s.told(u"#DPAB2:1002"_qs), QStringList());
    }

    void aDisconnectEmptiesTheList()
    {
        CrowdedSession s;
        QVERIFY(s.online && s.meetAb2(0));
        QVERIFY(s.isRunning("staleTimer"));
        s.manager->disconnectFromNetwork();
        QCOMPARE(s.sim->takeCalls(), (QStringList{u"networkDisconnected"_qs, u"removeAllAircraft"_qs,
                                                  u"clearControllers"_qs, u"removeAllAircraft"_qs}));
        QVERIFY(s.aircraft->aircraft().isEmpty());
        QVERIFY(!s.isRunning("staleTimer"));
    }

    void onlyTheStaleTimerEverRuns()
    {
        CrowdedSession s;
        QVERIFY(s.online);
        QVERIFY(s.isRunning("staleTimer"));
        QVERIFY(!s.isRunning("syncTimer"));
        QCOMPARE(s.aircraft->findChild<QTimer *>(u"staleTimer"_qs)->interval(), 10'000);
        QCOMPARE(s.aircraft->findChild<QTimer *>(u"syncTimer"_qs)->interval(), 5'000);
        QVERIFY(s.meetAb2(300));
        QVERIFY(s.feed(TrafficSession::configuration(fullGearDown)));
        QVERIFY(s.feed(TrafficSession::fast(ab2)));
        QVERIFY(!s.isRunning("syncTimer"));
        s.sim->takeCalls();
        s.fire("syncTimer"); // connected all the same
        QCOMPARE(s.sim->takeCalls(), (QStringList{add, update}));
    }
};

TARVO_TEST(AircraftManagerTest)
#include "AircraftManagerTest.moc"
