#include "manager/Session.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using tarvo::manager::NetworkManager;
using tarvo::manager::SimulatorData;
using tarvo::test::columns;
using tarvo::test::FakeSimulator;
using tarvo::test::Session;

namespace {

/// What a manager tells about the simulator, in order: "state 1", "data", "changed", ...
QStringList *watch(Session &s, QStringList *told)
{
    NetworkManager *m = s.manager.get();
    QObject::connect(m, &NetworkManager::simulatorConnectionStateChanged, m,
                     [told](bool on) { *told << (on ? u"state on"_qs : u"state off"_qs); });
    QObject::connect(m, &NetworkManager::simulatorDataUpdated, m, [told](const SimulatorData &data) {
        *told << (data.simConnected ? u"data on"_qs : u"data off"_qs);
    });
    QObject::connect(m, &NetworkManager::simulatorChanged, m, [told] { *told << u"changed"_qs; });
    return told;
}

/// As texts: comparing two empty lists of numbers trips the undefined-behaviour sanitizer inside Qt.
QStringList texts(const QList<uint> &numbers)
{
    QStringList list;
    for (const uint number : numbers)
        list << QString::number(number);
    return list;
}

} // namespace

class NetworkManagerSimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void noSimulatorIsNoChange()
    {
        Session s;
        QStringList told;
        watch(s, &told);
        s.manager->setSimulator(nullptr);
        s.manager->reconnectSimulator();
        QCOMPARE(told, QStringList());
        QVERIFY(!s.isRunning("dataWatchdog"));
    }

    void installing()
    {
        Session s;
        QStringList told;
        watch(s, &told);
        const auto sim = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(sim);
        QCOMPARE(told, (QStringList{u"state off"_qs, u"data off"_qs, u"changed"_qs}));
        QVERIFY(s.isRunning("dataWatchdog"));
        QCOMPARE(sim->calls, QStringList()); // reconnected in a moment, not on this stack
        TRY_COMPARE(sim->calls, QStringList{u"reconnectSimulator"_qs});
        s.manager->reconnectSimulator();
        QCOMPARE(sim->calls.size(), 2);
    }

    void replacing()
    {
        Session s;
        s.addSimulator();
        model::RadioStackState radio;
        radio.com1Frequency = 118000;
        radio.com1TransmitEnabled = true;
        emit s.sim->radioStackStateChanged(radio);
        QCOMPARE(s.manager->transmitFrequencies(), QList<uint>{118000});

        const std::weak_ptr<FakeSimulator> old = s.sim;
        QStringList calls;
        connect(s.sim.get(), &QObject::destroyed, this, [&] { calls << u"gone"_qs; });
        FakeSimulator *raw = s.sim.get();
        QStringList oldCalls;
        connect(s.manager.get(), &NetworkManager::simulatorConnectionStateChanged, this,
                [&] { oldCalls = raw->calls; });
        s.sim.reset();
        const auto next = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(next);
        QCOMPARE(oldCalls, (QStringList{u"removeAllAircraft"_qs, u"clearControllers"_qs}));
        TRY_VERIFY(old.expired());
        QCOMPARE(s.manager->simulator(), next);
        QVERIFY(s.manager->transmitFrequencies().isEmpty());
        QVERIFY(!s.connectPilot()); // its data are another simulator's
    }

    void theOldSimulatorIsHeardNoMore()
    {
        Session s;
        s.addSimulator();
        const auto next = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(next);
        QStringList told;
        watch(s, &told);
        emit s.sim->simConnectionStateChanged(true);
        emit s.sim->userAircraftDataChanged({.latitude = 1});
        emit s.sim->simPausedStateChanged(true);
        emit s.sim->forceDisconnect(u"x"_qs);
        QCOMPARE(told, QStringList());
        QCOMPARE(s.takeNotifications(), QStringList());
    }

    void aReplacedSimulatorIsNotReconnected()
    {
        Session s;
        const auto first = std::make_shared<FakeSimulator>();
        const auto second = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(first);
        s.manager->setSimulator(second);
        TRY_COMPARE(second->calls, QStringList{u"reconnectSimulator"_qs});
        QCOMPARE(first->calls, (QStringList{u"removeAllAircraft"_qs, u"clearControllers"_qs}));
    }

    void connectionStates()
    {
        Session s;
        s.addSimulator();
        QStringList told;
        watch(s, &told);
        emit s.sim->simConnectionStateChanged(false);
        emit s.sim->simConnectionStateChanged(true);
        QCOMPARE(told, (QStringList{u"state off"_qs, u"data off"_qs, u"state on"_qs, u"data on"_qs}));
        QVERIFY(!s.connectPilot()); // no live sample since
    }

    void changesAreTold()
    {
        Session s;
        s.addSimulator();
        SimulatorData last;
        connect(s.manager.get(), &NetworkManager::simulatorDataUpdated, this,
                [&](const SimulatorData &data) { last = data; });
        QSignalSpy updates(s.manager.get(), &NetworkManager::simulatorDataUpdated);
        QSignalSpy radios(s.manager.get(), &NetworkManager::radioStatesUpdate);

        model::UserAircraftData aircraft = Session::standing();
        aircraft.heading = 90;
        model::UserAircraftConfigData configuration;
        configuration.gearDown = true;
        model::RadioStackState radio;
        radio.transponderCode = 2000;
        for (int i = 0; i < 2; ++i) { // the second time nothing is new
            emit s.sim->userAircraftDataChanged(aircraft);
            emit s.sim->userAircraftConfigDataChanged(configuration);
            emit s.sim->simPausedStateChanged(true);
            emit s.sim->radioStackStateChanged(radio);
        }
        QCOMPARE(updates.size(), 3);
        QCOMPARE(radios.size(), 1);
        emit s.sim->simPausedStateChanged(false);
        QCOMPARE(updates.size(), 4);
        QVERIFY(last.simConnected);
        QCOMPARE(last.aircraft, aircraft);
        QCOMPARE(last.config, configuration);
        QCOMPARE(last.radio, radio);
        QVERIFY(!last.simPaused);
    }

    void silence_data()
    {
        columns<int, QStringList>("ms", "expected");
        QTest::newRow("3000 ms") << 3000 << QStringList();
        QTest::newRow("3001 ms") << 3001 << QStringList{u"state off"_qs, u"data off"_qs};
    }

    void silence()
    {
        QFETCH(int, ms);
        QFETCH(QStringList, expected);
        Session s;
        s.addSimulator();
        QStringList told;
        watch(s, &told);
        s.clock.advance(ms);
        QVERIFY(s.fire("dataWatchdog"));
        QVERIFY(s.fire("dataWatchdog")); // told once
        QCOMPARE(told, expected);
    }

    void silenceDoesNotEndTheSession()
    {
        Session s;
        s.addSimulator();
        QVERIFY(s.connectPilot());
        s.peer.inject(u"$CRSERVER:AB1:IP:1.2.3.4"_qs);
        TRY_EVENTS(s, u"connected AB1"_qs);
        QVERIFY(s.peer.skip(4));
        s.clock.advance(60'000);
        QVERIFY(s.fire("dataWatchdog"));
        emit s.sim->simConnectionStateChanged(false);
        QVERIFY(s.fire("slowTimer"));
        QVERIFY(s.peer.nextLine().startsWith(u"^AB1:40.000000:116.500000:"_qs)); // as if it were paused
        EXPECT_LINE(s, u"@S:AB1:0:1:40.000000:116.500000:0:0:0:0"_qs);           // what was stored last
        QCOMPARE(s.takeEvents(), QStringList());
    }

    void transmitFrequencies_data()
    {
        columns<bool, bool, QStringList>("com1", "com2", "expected");
        QTest::newRow("none") << false << false << QStringList{};
        QTest::newRow("COM1") << true << false << QStringList{u"118500"_qs};
        QTest::newRow("COM2") << false << true << QStringList{u"121700"_qs};
        QTest::newRow("both") << true << true << QStringList{u"118500"_qs, u"121700"_qs};
    }

    void transmitFrequencies()
    {
        QFETCH(bool, com1);
        QFETCH(bool, com2);
        QFETCH(QStringList, expected);
        Session s;
        s.addSimulator();
        model::RadioStackState radio;
        radio.com1Frequency = 118500;
        radio.com2Frequency = 121700;
        radio.com1TransmitEnabled = radio.com2TransmitEnabled = true;
        emit s.sim->radioStackStateChanged(radio);
        radio.com1TransmitEnabled = com1;
        radio.com2TransmitEnabled = com2;
        emit s.sim->radioStackStateChanged(radio);
        QCOMPARE(texts(s.manager->transmitFrequencies()), expected);
        radio.com1Frequency = 0; // as in a simulator that lacks the frequency: nobody could hear that
        radio.com2Frequency = 99'999;
        emit s.sim->radioStackStateChanged(radio);
        QCOMPARE(s.manager->transmitFrequencies(), QList<uint>());
    }

    void forwards()
    {
        Session s;
        s.addSimulator();
        QSignalSpy failed(s.manager.get(), &NetworkManager::simulatorConnectionFailed);
        QSignalSpy version(s.manager.get(), &NetworkManager::simulatorXPlaneVersionUpdated);
        QSignalSpy plugin(s.manager.get(), &NetworkManager::simulatorPluginStatusUpdated);
        QSignalSpy csl(s.manager.get(), &NetworkManager::simulatorCslStatusUpdated);
        QSignalSpy mapping(s.manager.get(), &NetworkManager::simulatorTrafficMappingStatusUpdated);
        QSignalSpy traffic(s.manager.get(), &NetworkManager::simulatorTrafficSnapshotUpdated);
        emit s.sim->simConnectionFailed(u"no"_qs);
        emit s.sim->xplaneVersionUpdated(120105);
        emit s.sim->pluginVersionChecked(true);
        emit s.sim->cslValidationChecked(true);
        emit s.sim->trafficMappingStatusChanged(u"ok"_qs);
        emit s.sim->trafficSnapshotChanged({1, 2});
        QCOMPARE(failed.value(0).value(0).toString(), u"no"_qs);
        QCOMPARE(version.value(0).value(0).toInt(), 120105);
        QCOMPARE(plugin.value(0).value(0).toBool(), true);
        QCOMPARE(csl.value(0).value(0).toBool(), true);
        QCOMPARE(mapping.value(0).value(0).toString(), u"ok"_qs);
        QCOMPARE(traffic.value(0).value(0).toList().size(), 2);
    }

    void forcedDisconnect_data()
    {
        columns<QString, QString>("reason", "text");
        QTest::newRow("reason") << u"slew mode"_qs << u"10 Forcibly disconnected from network: slew mode"_qs;
        QTest::newRow("no reason") << QString() << u"10 Forcibly disconnected from network."_qs;
    }

    void forcedDisconnect()
    {
        QFETCH(QString, reason);
        QFETCH(QString, text);
        Session s;
        s.addSimulator();
        QVERIFY(s.connectPilot());
        QVERIFY(s.peer.skip(4));
        emit s.sim->forceDisconnect(reason);
        EXPECT_LINE(s, u"#DPAB1:1001"_qs);
        QVERIFY(s.peer.waitForClose());
        QCOMPARE(s.takeNotifications().last(), text);
        QCOMPARE(s.takeEvents(), QStringList{u"disconnected forced"_qs});
    }

    void forcedDisconnectOfNothingIsNothing()
    {
        Session s;
        s.addSimulator();
        emit s.sim->forceDisconnect(u"slew mode"_qs);
        QCOMPARE(s.takeNotifications(), QStringList());
        QCOMPARE(s.takeEvents(), QStringList());
    }

    void aSimulatorMayOutliveTheManager()
    {
        Session s;
        s.addSimulator();
        s.manager.reset();
        emit s.sim->simConnectionStateChanged(true);
        emit s.sim->userAircraftDataChanged({.latitude = 1});
        QCOMPARE(s.sim->calls, QStringList());
    }
};

TARVO_TEST(NetworkManagerSimulatorTest)
#include "NetworkManagerSimulatorTest.moc"
