#include "manager/RemoteAircraftTable.h"
#include "manager/TrafficSession.h"
#include "support/Columns.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using tarvo::manager::NetworkManager;
using tarvo::model::RemoteAircraft;
using namespace tarvo::test;
using State = tarvo::model::RemoteAircraft::State;

namespace {

const QString gearDown = uR"({"config":{"gear_down":true}})"_qs;

model::AircraftConfiguration parsed(const QString &json)
{
    return model::AircraftConfigurationMessage::parse(json).configuration.value();
}

} // namespace

/// The other aircraft in the session's own table: what is asked, what is stored, and what the simulator is told.
class NetworkManagerTrafficTest : public QObject
{
    Q_OBJECT

private slots:
    // --- positions ---

    void anUnknownTypeIsAskedOnce()
    {
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(u"@N: ab2 :2000:1:40.5:116.25:3281:250:0:0"_qs, askForType));
        QVERIFY(s.feed(TrafficSession::slow(ab2)));
        QVERIFY(s.feed(TrafficSession::fast(ab2)));
        QCOMPARE(s.takeTrace(), (QStringList{u"slow AB2 250"_qs, u"slow AB2 250"_qs, u"fast AB2"_qs}));
        QCOMPARE(s.manager->remoteAircraft().size(), 1);
    }

    void aSlowPositionIsStored()
    {
        TrafficSession s;
        QVERIFY(s.online);
        s.sim->remoteAltitudeShift = 10;
        s.clock.advance(1234);
        QVERIFY(s.feed(u"@N:CCA12:2000:1:40.5:116.25:3281:250:4287629314:99"_qs,
                       TrafficSession::typeQuestions(u"CCA12"_qs)));
        const RemoteAircraft known = s.manager->remoteAircraft(u"CCA12"_qs).value();
        QCOMPARE(known.airline, u"CCA"_qs);
        QCOMPARE(known.visualState.latitude, 40.5);
        QCOMPARE(known.visualState.longitude, 116.25);
        QCOMPARE(known.visualState.altitudeMslM, 3291 / 3.28084); // adjusted in feet, then made metres
        QCOMPARE(known.visualState.altitudeAglM, 0.0);
        QCOMPARE(known.groundSpeed, 250.0);
        QCOMPARE(known.lastUpdate.toMSecsSinceEpoch(), s.clock.wallMs());
        QCOMPARE(known.state, State::New);
        QVERIFY(!known.fastSeen);
    }

    void aShownAircraftIsMoved()
    {
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        QVERIFY(s.feed(TrafficSession::slow(ab2, 240, u"41.25"_qs)));
        QCOMPARE(s.takeTrace(), (QStringList{u"positionUpdate AB2"_qs, u"slow AB2 240"_qs}));
        QCOMPARE(s.sim->told.size(), 1);
        QCOMPARE(s.sim->told[0].aircraft, s.known());
        QCOMPARE(s.sim->told[0].state, s.known().visualState);
        QCOMPARE(s.known().visualState.latitude, 41.25);
        QVERIFY(s.feed(TrafficSession::fast(ab2, u"^"_qs, u"30:5:40"_qs, u"42.75"_qs)));
        QCOMPARE(s.sim->told.size(), 2);
        QCOMPARE(s.sim->told[1].aircraft, s.known());
        QCOMPARE(s.sim->told[1].state, s.known().visualState);
        QCOMPARE(s.known().visualState.latitude, 42.75);
    }

    void fastPositions_data()
    {
        columns<QString, double, double, double>("line", "x", "pitchRate", "groundSpeed");
        QTest::newRow("fast") << TrafficSession::fast(ab2) << 30.0 << 0.1 << 50 * 1.943844;
        QTest::newRow("slow") << TrafficSession::fast(ab2, u"#SL"_qs) << 30.0 << 0.1 << 50 * 1.943844;
        QTest::newRow("hardly moving") << TrafficSession::fast(ab2, u"^"_qs, u"0.04:9:0"_qs) << 0.04 << 0.1 << 250.0;
        QTest::newRow("too fast") << TrafficSession::fast(ab2, u"^"_qs, u"514.44:0:0"_qs) << 514.44 << 0.1 << 900.0;
        QTest::newRow("stopped") << TrafficSession::stopped(ab2) << 0.0 << 0.0 << 0.0;
    }

    void fastPositions()
    {
        QFETCH(QString, line);
        QFETCH(double, x);
        QFETCH(double, pitchRate);
        QFETCH(double, groundSpeed);
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        s.sim->remoteAltitudeShift = -10;
        s.clock.advance(1);
        QVERIFY(s.feed(line));
        QCOMPARE(s.takeTrace(), (QStringList{u"fastPositionUpdate AB2"_qs, u"fast AB2"_qs}));
        const RemoteAircraft known = s.known();
        QVERIFY(known.fastSeen);
        QCOMPARE(known.groundSpeed, groundSpeed);
        QCOMPARE(known.lastUpdate.toMSecsSinceEpoch(), s.clock.wallMs());
        QCOMPARE(s.sim->told.size(), 1);
        const FakeSimulator::Told &told = s.sim->told[0];
        QCOMPARE(told.aircraft, known);
        QCOMPARE(told.state, known.visualState);
        QCOMPARE(told.state.altitudeMslM, 3271 / 3.28084);
        QCOMPARE(told.state.altitudeAglM, 1000 / 3.28084);
        QCOMPARE(told.state.noseWheelAngle, 7.5);
        QCOMPARE(told.positional.x, x);
        QCOMPARE(told.rotational.x, pitchRate);
    }

    void vectorsKeepTheirOrder()
    {
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        QVERIFY(s.feed(TrafficSession::fast(ab2, u"^"_qs, u"1:2:3"_qs)));
        QCOMPARE(s.sim->told[0].positional, (model::VelocityVector{1, 2, 3}));
        QCOMPARE(s.sim->told[0].rotational, (model::VelocityVector{0.1, 0.2, 0.3}));
    }

    void aFastPositionMayBeTheFirst()
    {
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::fast(ab2), askForType));
        QCOMPARE(s.takeTrace(), QStringList{u"fast AB2"_qs});
    }

    void ownEchoesAreDropped_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("slow") << TrafficSession::slow(u"ab1"_qs);
        QTest::newRow("fast") << TrafficSession::fast(u"AB1"_qs);
        QTest::newRow("stopped") << TrafficSession::stopped(u"AB1"_qs);
        QTest::newRow("flight plan") << TrafficSession::flightPlan(u"B738"_qs, u"AB1"_qs);
        QTest::newRow("flight plan answer") << u"$CRSERVER:AB1:FP:AB1:B738"_qs;
        QTest::newRow("plane information") << u"#SBAB1:AB2:PI:GEN:EQUIPMENT=B738"_qs;
        QTest::newRow("nobody's position") << TrafficSession::slow(u" "_qs);
        QTest::newRow("nobody's flight plan") << TrafficSession::flightPlan(u"B738"_qs, u" "_qs);
        QTest::newRow("a callsign beyond measure") << TrafficSession::slow(QString(40, u'A'));
    }

    void ownEchoesAreDropped()
    {
        QFETCH(QString, line);
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(line));
        QCOMPARE(s.takeTrace(), QStringList());
        QVERIFY(s.manager->remoteAircraft().isEmpty());
    }

    void anOwnConfigurationIsOnlyRaised()
    {
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::configuration(gearDown, u"AB1"_qs)));
        QCOMPARE(s.takeTrace(), QStringList{u"configuration AB1"_qs});
        QVERIFY(s.manager->remoteAircraft().isEmpty());
    }

    void theShadowedFlightIsDropped_data()
    {
        QTest::addColumn<QString>("line"); // WHO: a callsign
        QTest::newRow("slow") << TrafficSession::slow(u"WHO"_qs);
        QTest::newRow("fast") << TrafficSession::fast(u"WHO"_qs);
        QTest::newRow("stopped") << TrafficSession::stopped(u"WHO"_qs);
        QTest::newRow("plane information") << u"#SBWHO:CES1A:PI:GEN:EQUIPMENT=B738"_qs;
        QTest::newRow("flight plan") << TrafficSession::flightPlan(u"B738"_qs, u"WHO"_qs);
        QTest::newRow("flight plan answer") << u"$CRWHO:CES1A:FP:TYPE=B738"_qs;
        QTest::newRow("configuration") << TrafficSession::configuration(gearDown, u"WHO"_qs);
    }

    void theShadowedFlightIsDropped()
    {
        QFETCH(QString, line);
        test::Session s;
        s.addSimulator();
        QVERIFY(s.manager->connectToNetwork(u"CES1A"_qs, QString(), QString(), true));
        QVERIFY(s.peer.skip(3));
        QSignalSpy slow(s.manager.get(), &NetworkManager::slowPositionUpdateReceived);
        QSignalSpy fast(s.manager.get(), &NetworkManager::fastPositionUpdateReceived);
        QSignalSpy info(s.manager.get(), &NetworkManager::aircraftInfoReceived);
        s.sim->takeCalls();
        s.peer.inject(QString(line).replace(u"WHO"_qs, u"ces1"_qs));
        s.peer.inject(QString(line).replace(u"WHO"_qs, u"CES1"_qs));
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(slow.size() + fast.size() + info.size(), 0);
        QCOMPARE(s.sim->takeCalls(), QStringList());
        QVERIFY(s.manager->remoteAircraft().isEmpty());
        s.peer.inject(QString(line).replace(u"WHO"_qs, u"CES2"_qs)); // somebody else
        TRY_VERIFY(s.manager->knowsAircraft(u"CES2"_qs));
    }

    void withoutASimulatorPositionsAreIgnored()
    {
        test::Session s;
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.skip(3));
        QSignalSpy slow(s.manager.get(), &NetworkManager::slowPositionUpdateReceived);
        s.peer.inject(TrafficSession::slow(ab2));
        s.peer.inject(TrafficSession::fast(ab2));
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(slow.size(), 0);
        QVERIFY(s.manager->remoteAircraft().isEmpty());
    }

    void theOwnAircraftIsTold_data()
    {
        columns<QString, QString>("callsign", "answer");
        QTest::newRow("no airline") << u"ab1"_qs << u"#SBAB1:AB2:PI:GEN:EQUIPMENT=B738"_qs;
        QTest::newRow("airline") << u"cca123"_qs << u"#SBCCA123:AB2:PI:GEN:EQUIPMENT=B738:AIRLINE=CCA"_qs;
    }

    void theOwnAircraftIsTold()
    {
        QFETCH(QString, callsign);
        QFETCH(QString, answer);
        test::Session s;
        s.addSimulator();
        QVERIFY(s.manager->connectToNetwork(callsign, u"b738"_qs, QString(), false));
        QVERIFY(s.peer.skip(4));
        s.peer.inject(u"#SBAB2:%1:PIR"_qs.arg(callsign));
        EXPECT_LINE(s, answer);
        QVERIFY(s.peer.expectNothing());
    }

    // --- configurations ---

    void aConfigurationIsStoredWhole()
    {
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        s.clock.advance(5);
        const QString lights = uR"({"config":{"lights":{"nav_on":true},"engines":{"1":{"on":true}}}})"_qs;
        QVERIFY(s.feed(TrafficSession::configuration(gearDown, u"ab2"_qs)));
        QVERIFY(s.feed(TrafficSession::configuration(lights)));
        QCOMPARE(s.takeTrace(), (QStringList{u"updateAircraftConfiguration AB2"_qs, u"configuration ab2"_qs,
                                             u"updateAircraftConfiguration AB2"_qs, u"configuration AB2"_qs}));
        QCOMPARE(s.known().configuration, parsed(lights)); // the gear is forgotten
        QVERIFY(s.known().hasConfiguration);
        QCOMPARE(s.known().lastStateChange.toMSecsSinceEpoch(), s.clock.wallMs());
        QCOMPARE(s.sim->told[1].aircraft.configuration, parsed(lights));
        QVERIFY(s.feed(TrafficSession::slow(ab2))); // known, so not asked for
    }

    void aConfigurationBeforeTheType()
    {
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::configuration(gearDown)));
        QCOMPARE(s.takeTrace(), QStringList{u"configuration AB2"_qs});
        QCOMPARE(s.known().lastUpdate.toMSecsSinceEpoch(), s.clock.wallMs());
        QVERIFY(s.feed(TrafficSession::slow(ab2), askForType));
        s.takeTrace();
        QVERIFY(s.feed(TrafficSession::planeInfo()));
        QCOMPARE(s.takeTrace(),
                 (QStringList{u"addAircraft AB2"_qs, u"updateAircraftConfiguration AB2"_qs, u"info AB2 B738 "_qs}));
    }

    void aConfigurationIsASignOfLife()
    {
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        s.clock.advance(1234);
        QVERIFY(s.feed(TrafficSession::configuration(gearDown)));
        QCOMPARE(s.known().lastUpdate.toMSecsSinceEpoch(), s.clock.wallMs());
    }

    void nobodyIsShownBeforeHisPlaceIsKnown_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("slow") << TrafficSession::slow(ab2);
        QTest::newRow("fast") << TrafficSession::fast(ab2);
    }

    void nobodyIsShownBeforeHisPlaceIsKnown()
    {
        QFETCH(QString, line);
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::flightPlan(u"B738"_qs)));
        QVERIFY(s.feed(u"$CRSERVER:AB1:FP:AB2:A320"_qs));
        QVERIFY(s.feed(TrafficSession::planeInfo()));
        QVERIFY(s.feed(TrafficSession::configuration(gearDown)));
        s.manager->setSimulator(s.sim); // a new one changes nothing in that
        QVERIFY(!s.sim->calls.contains(u"addAircraft AB2"_qs));
        QVERIFY(s.feed(line));
        QVERIFY(s.sim->calls.contains(u"addAircraft AB2"_qs));
        QCOMPARE(s.sim->told.constFirst().state.latitude, 40.5);
    }

    void otherTextsAreOnlyRaised_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("request") << uR"({"request":"full"})"_qs;
        QTest::newRow("no JSON") << u"hello"_qs;
        QTest::newRow("empty") << QString();
    }

    void otherTextsAreOnlyRaised()
    {
        QFETCH(QString, text);
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::configuration(text)));
        QCOMPARE(s.takeTrace(), QStringList{u"configuration AB2"_qs});
        QVERIFY(s.manager->remoteAircraft().isEmpty());
    }

    // --- leaving ---

    void deletions_data()
    {
        columns<QString, QStringList>("line", "trace");
        QTest::newRow("shown") << u"#DP ab2 :1002"_qs
                               << QStringList{u"removeAircraft AB2 Pilot disconnected"_qs, u"deleted AB2"_qs};
        QTest::newRow("not shown") << u"#DPAB3:1003"_qs << QStringList{u"deleted AB3"_qs};
        QTest::newRow("unknown") << u"#DPAB4:1004"_qs << QStringList{u"deleted AB4"_qs};
        QTest::newRow("own") << u"#DPab1:1001"_qs << QStringList{u"voice off"_qs, u"deleted AB1"_qs};
    }

    void deletions()
    {
        QFETCH(QString, line);
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::slow(u"AB3"_qs), TrafficSession::typeQuestions(u"AB3"_qs)));
        QVERIFY(s.showAb2());
        QVERIFY(s.feed(line));
        QTEST(s.takeTrace(), "trace");
    }

    void whatListenersFindWhenAircraftGo()
    {
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        QVERIFY(s.feed(TrafficSession::slow(u"AB3"_qs), TrafficSession::typeQuestions(u"AB3"_qs)));
        s.takeTrace();
        const auto note = [&s](const QString &callsign) {
            s.trace << callsign + (s.manager->knowsAircraft(callsign) ? u" known"_qs : u" unknown"_qs);
        };
        NetworkManager *m = s.manager.get();
        QObject::connect(m, &NetworkManager::pilotDeleted, m, [&note] { note(ab2); });
        QObject::connect(m, &NetworkManager::networkDisconnected, m, [&note] { note(u"AB3"_qs); });
        QVERIFY(s.feed(u"#DPAB2:1002"_qs));
        QCOMPARE(s.takeTrace(),
                 (QStringList{u"removeAircraft AB2 Pilot disconnected"_qs, u"deleted AB2"_qs, u"AB2 unknown"_qs}));
        s.manager->disconnectFromNetwork();
        QCOMPARE(s.takeTrace().mid(3), (QStringList{u"disconnected"_qs, u"AB3 known"_qs})); // forgotten thereafter
        QVERIFY(!s.manager->knowsAircraft(u"AB3"_qs));
    }

    void whoComesBackIsAskedAnew()
    {
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        QVERIFY(s.feed(u"#DPAB2:1002"_qs));
        QVERIFY(!s.manager->remoteAircraft(ab2));
        QVERIFY(s.showAb2());
    }

    void aDisconnectForgetsAll()
    {
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        s.manager->disconnectFromNetwork();
        QCOMPARE(s.takeTrace(), (QStringList{u"networkDisconnected"_qs, u"removeAllAircraft"_qs, u"clearControllers"_qs,
                                             u"disconnected"_qs}));
        QVERIFY(s.manager->remoteAircraft().isEmpty());
    }

    // --- another simulator ---

    void trafficMovesToTheNextSimulator()
    {
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        QVERIFY(s.feed(TrafficSession::slow(u"AB3"_qs), TrafficSession::typeQuestions(u"AB3"_qs))); // no type
        QVERIFY(s.feed(TrafficSession::configuration(gearDown, u"AB4"_qs)));
        QVERIFY(s.feed(TrafficSession::flightPlan(u"C172"_qs, u"AB4"_qs)));
        QVERIFY(s.feed(TrafficSession::slow(u"AB4"_qs)));
        QVERIFY(s.feed(TrafficSession::flightPlan(u"C172"_qs, u"AB6"_qs))); // nowhere yet
        QVERIFY(s.feed(u"#SBAB5:AB1:PI:GEN:EQUIPMENT=A320"_qs));
        QVERIFY(s.feed(u"#DPAB5:1005"_qs)); // has left
        s.takeTrace();

        const auto next = std::make_shared<FakeSimulator>();
        s.watch(*next);
        s.manager->setSimulator(next);
        QCOMPARE(s.takeTrace(), (QStringList{u"removeAllAircraft"_qs, u"clearControllers"_qs, u"addAircraft AB2"_qs,
                                             u"addAircraft AB4"_qs, u"updateAircraftConfiguration AB4"_qs}));
        QCOMPARE(next->told[0].aircraft.state, State::Pending);
        QCOMPARE(s.known().state, State::InSimulator);
        QVERIFY(s.peer.expectNothing()); // AB2's configuration has been asked for before
    }

    // --- questions ---

    void questionsThatOthersRaise()
    {
        TrafficSession s;
        QVERIFY(s.online);
        s.manager->requestFullConfiguration(ab2);
        s.manager->requestFullConfiguration(ab2); // whoever asks may ask twice
        s.manager->requestPlaneInfoAndFlightPlan(ab2);
        s.config.set(config::authVatsim, true);
        s.manager->requestPlaneInfoAndFlightPlan(ab2);
        for (const QString &line : QStringList{askForConfiguration, askForConfiguration} + askForType + askForType +
                                       QStringList{TrafficSession::textQuestion(ab2)})
            EXPECT_LINE(s, line);
        QVERIFY(s.peer.expectNothing());
    }

    void aServerThatInventsCallsignsFillsNothing()
    {
        TrafficSession s;
        QVERIFY(s.online);
        const test::LogCapture log;
        QByteArray lines;
        const auto room = int(manager::RemoteAircraftTable::maximumSize);
        for (int i = 0; i < room + 100; ++i)
            lines += TrafficSession::configuration(gearDown, u"X%1"_qs.arg(i)).toLatin1() + "\r\n";
        s.peer.injectBytes(lines);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.manager->remoteAircraft().size(), room);
        QCOMPARE(log.texts(QtWarningMsg).size(), 1);
        QCOMPARE(s.takeTrace().size(), room + 100); // raised nevertheless
    }
};

TARVO_TEST(NetworkManagerTrafficTest)
#include "NetworkManagerTrafficTest.moc"
