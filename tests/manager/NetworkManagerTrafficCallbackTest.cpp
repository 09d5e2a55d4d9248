#include "manager/TrafficSession.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using tarvo::manager::NetworkManager;
using namespace tarvo::test;

namespace {

/// A session in which AB2 has a type, but is not yet in the simulator.
struct BeforeAdding : TrafficSession
{
    bool ready = online && feed(slow(ab2), typeQuestions(ab2));

    BeforeAdding() { takeTrace(); }

    /// Calls `act` once, within the simulator's call that starts with `name`.
    void within(const QString &name, const std::function<void()> &act)
    {
        sim->onCall = [this, name, act](const QString &call) {
            trace << call;
            if (!call.startsWith(name))
                return;
            watch(*sim);
            act();
        };
    }
};

/// A simulator that does something while it is asked for an altitude.
struct AdjustingSimulator : FakeSimulator
{
    std::function<void()> adjusted;

    double adjustRemoteAltitude(double altitudeFeet) const override
    {
        adjusted();
        return altitudeFeet;
    }
};

} // namespace

/// Simulators and listeners that come back into the session while it handles a message about another aircraft.
class NetworkManagerTrafficCallbackTest : public QObject
{
    Q_OBJECT

private slots:
    void aDisconnectWithinTheAddition()
    {
        BeforeAdding s;
        QVERIFY(s.ready);
        s.within(u"addAircraft"_qs, [&s] { s.manager->disconnectFromNetwork(); });
        s.peer.inject(TrafficSession::planeInfo());
        QVERIFY(s.peer.waitForClose());
        QCOMPARE(s.takeTrace(), (QStringList{u"addAircraft AB2"_qs, u"networkDisconnected"_qs, u"removeAllAircraft"_qs,
                                             u"clearControllers"_qs, u"disconnected"_qs}));
        QVERIFY(s.manager->remoteAircraft().isEmpty());
    }

    void aDisconnectWithinAPosition_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("call");
        QTest::newRow("slow") << TrafficSession::slow(ab2) << u"positionUpdate AB2"_qs;
        QTest::newRow("fast") << TrafficSession::fast(ab2) << u"fastPositionUpdate AB2"_qs;
        QTest::newRow("configuration") << TrafficSession::configuration(uR"({"config":{}})"_qs)
                                       << u"updateAircraftConfiguration AB2"_qs;
        QTest::newRow("flight plan") << TrafficSession::flightPlan(u"A320"_qs) << u"updateAircraftConfiguration AB2"_qs;
        QTest::newRow("deletion") << u"#DPAB2:1002"_qs << u"removeAircraft AB2 Pilot disconnected"_qs;
    }

    void aDisconnectWithinAPosition()
    {
        QFETCH(QString, line);
        QFETCH(QString, call);
        BeforeAdding s;
        QVERIFY(s.ready);
        QVERIFY(s.feed(TrafficSession::planeInfo(), {TrafficSession::configurationQuestion(ab2)}));
        s.takeTrace();
        s.within(call, [&s] { s.manager->disconnectFromNetwork(); });
        s.peer.inject(line);
        QVERIFY(s.peer.waitForClose());
        QCOMPARE(s.takeTrace(), (QStringList{call, u"networkDisconnected"_qs, u"removeAllAircraft"_qs,
                                             u"clearControllers"_qs, u"disconnected"_qs}));
    }

    void aDisconnectWhileTheAltitudeIsAdjusted_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("slow") << TrafficSession::slow(ab2);
        QTest::newRow("fast") << TrafficSession::fast(ab2);
    }

    void aDisconnectWhileTheAltitudeIsAdjusted()
    {
        QFETCH(QString, line);
        TrafficSession s;
        QVERIFY(s.online);
        const auto adjusting = std::make_shared<AdjustingSimulator>();
        bool known = true;
        adjusting->adjusted = [&s, &known] {
            known = s.manager->knowsAircraft(ab2); // nothing is of the table yet that this could take away
            s.manager->disconnectFromNetwork();
        };
        s.manager->setSimulator(adjusting);
        s.takeTrace();
        s.peer.inject(line);
        QVERIFY(s.peer.waitForClose());
        QCOMPARE(s.takeTrace(), QStringList{u"disconnected"_qs}); // and no position behind it
        QVERIFY(!known);
        QVERIFY(s.manager->remoteAircraft().isEmpty());
    }

    void aDisconnectAtTheWordThatTheOwnVoiceIsOff()
    {
        BeforeAdding s;
        QVERIFY(s.ready);
        NetworkManager *m = s.manager.get();
        QObject::connect(m, &NetworkManager::disableVoiceTransmit, m, &NetworkManager::disconnectFromNetwork);
        s.peer.inject(u"#DPAB1:1001"_qs);
        QVERIFY(s.peer.waitForClose());
        QCOMPARE(s.takeTrace(), (QStringList{u"voice off"_qs, u"networkDisconnected"_qs, u"removeAllAircraft"_qs,
                                             u"clearControllers"_qs, u"disconnected"_qs}));
    }

    void anotherSimulatorWithinTheAddition()
    {
        BeforeAdding s;
        QVERIFY(s.ready);
        QVERIFY(s.feed(TrafficSession::configuration(uR"({"config":{"gear_down":true}})"_qs)));
        s.takeTrace();
        const auto next = std::make_shared<FakeSimulator>();
        const std::weak_ptr<FakeSimulator> old = s.sim;
        FakeSimulator *adding = s.sim.get();
        adding->onCall = [&s, &next](const QString &call) {
            s.trace << call;
            if (!call.startsWith(u"addAircraft"_qs))
                return;
            s.sim->onCall = {};
            s.sim.reset(); // the session alone keeps it, for as long as it is in the call
            s.watch(*next);
            s.manager->setSimulator(next);
        };
        QVERIFY(s.feed(TrafficSession::planeInfo()));
        TRY_VERIFY(old.expired());
        // The next one has it, once.
        QCOMPARE(next->takeCalls().mid(0, 2),
                 (QStringList{u"addAircraft AB2"_qs, u"updateAircraftConfiguration AB2"_qs}));
        QCOMPARE(s.takeTrace().count(u"addAircraft AB2"_qs), 2);
    }

    void anotherSimulatorWhileTrafficMoves()
    {
        BeforeAdding s;
        QVERIFY(s.ready);
        for (const QString &callsign : {u"AB3"_qs, u"AB4"_qs}) {
            QVERIFY(s.feed(TrafficSession::flightPlan(u"B738"_qs, callsign)));
            QVERIFY(s.feed(TrafficSession::slow(callsign), {TrafficSession::configurationQuestion(callsign)}));
        }
        const auto second = std::make_shared<FakeSimulator>();
        const auto third = std::make_shared<FakeSimulator>();
        second->onCall = [&](const QString &call) {
            if (call.startsWith(u"addAircraft"_qs))
                s.manager->setSimulator(third);
        };
        s.manager->setSimulator(second);
        QCOMPARE(second->calls, (QStringList{u"addAircraft AB3"_qs, u"removeAllAircraft"_qs, u"clearControllers"_qs}));
        QCOMPARE(third->calls.filter(u"addAircraft"_qs), (QStringList{u"addAircraft AB3"_qs, u"addAircraft AB4"_qs}));
        QCOMPARE(s.manager->simulator(), third);
    }
};

TARVO_TEST(NetworkManagerTrafficCallbackTest)
#include "NetworkManagerTrafficCallbackTest.moc"
