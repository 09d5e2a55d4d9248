#include "manager/Session.h"
#include "network/IcaoDatabase.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using tarvo::manager::NetworkManager;
using tarvo::test::FakeSimulator;
using tarvo::test::Session;

namespace {
const QString needsSimulator = u"10 飞行员模式连接 FSD 前，请先连接模拟器并等待有效的飞机数据。"_qs;
}

class NetworkManagerConnectTest : public QObject
{
    Q_OBJECT

private slots:
    void anInvalidRequestIsPostedAndNothingElseHappens()
    {
        Session s;
        QVERIFY(!s.manager->connectToNetwork(u"a-1"_qs, u"B738"_qs, QString(), false));
        QCOMPARE(s.takeNotifications(), QStringList{u"10 Invalid callsign. Use only A-Z, 0-9, or underscore; spaces "
                                                    "and Chinese characters are not allowed."_qs});
        QCOMPARE(s.takeEvents(), QStringList());
        QCOMPARE(s.manager->connectInfo(), model::ConnectInfo());
    }

    void theCallsignIsTrimmedAndRaised()
    {
        Session s;
        QVERIFY(s.manager->connectToNetwork(u" ab1 "_qs, u" b738 "_qs, u" ef-gh "_qs, true));
        QCOMPARE(s.manager->connectInfo(), (model::ConnectInfo{u"AB1"_qs, u"B738"_qs, u" ef-gh "_qs, true}));
    }

    void theTypeBecomesItsDesignator()
    {
        Session s;
        {
            network::IcaoDatabase database(u"designators"_qs);
            QVERIFY(database.open(s.root.filePath(u"cache/swift/aircrafticao.sqlite"_qs),
                                  network::IcaoDatabase::Mode::Writable));
            network::IcaoImport import;
            import.rows.resize(1);
            import.rows[0].id = 1;
            import.rows[0].designator = u"B738"_qs;
            QVERIFY(database.replaceAll(import));
        }
        s.icao.ensureLoaded();
        QVERIFY(s.icao.isReady());
        s.addSimulator();
        QVERIFY(s.manager->connectToNetwork(u"ab1"_qs, u" b738/l "_qs, QString(), false));
        QCOMPARE(s.manager->connectInfo().typeCode, u"B738"_qs);
        s.manager->disconnectFromNetwork();
        QVERIFY(s.manager->connectToNetwork(u"ab1"_qs, u" xyz/l "_qs, QString(), false));
        QCOMPARE(s.manager->connectInfo().typeCode, u"XYZ/L"_qs); // unknown: as it was typed
    }

    void anObserverNeedsNoType()
    {
        Session s;
        QVERIFY(s.manager->connectToNetwork(u"AB1"_qs, u"  "_qs, QString(), true));
        QCOMPARE(s.manager->connectInfo().typeCode, QString());
    }

    void busyWhileConnectingConnectedAndDisconnecting()
    {
        const QString busy = u"10 Already connected or connecting to network. Disconnect before changing callsign."_qs;
        Session s;
        QVERIFY(s.connectObserver());
        QVERIFY(!s.connectObserver());
        QCOMPARE(s.takeNotifications().last(), busy);
        s.peer.inject(u"$CRSERVER:AB1:IP:1.2.3.4"_qs);
        QVERIFY(s.peer.waitForConnection());
        TRY_EVENTS(s, u"connected AB1"_qs);
        QVERIFY(!s.connectObserver());
        QCOMPARE(s.takeNotifications().last(), busy);
    }

    /// Whoever would destroy the session has to know from its first word on.
    void aConnectionThatBeginsIsOnTheStackFromItsFirstWord()
    {
        Session s;
        bool onStack = false;
        connect(
            s.manager.get(), &manager::NetworkManager::notificationPosted, s.manager.get(),
            [&] { onStack = s.manager->isResolving(); }, Qt::SingleShotConnection);
        QVERIFY(s.connectObserver());
        QVERIFY(onStack);
        QVERIFY(!s.manager->isResolving());
    }

    void anAddressWithoutARouteIsNoConnection()
    {
        Session s(tarvo::test::Protocol::Classic, u"255.255.255.255"_qs);
        for (int attempt = 0; attempt < 2; ++attempt) { // the second isn't refused as busy
            QVERIFY(!s.connectObserver());
            const QStringList posted = s.takeNotifications();
            QCOMPARE(posted.size(), 2);
            QCOMPARE(posted.first(), u"9 Connecting to network..."_qs);
            QVERIFY2(posted.last().startsWith(u"10 NetworkError"_qs), qPrintable(posted.last()));
            QCOMPARE(s.takeEvents(), QStringList{u"disconnected"_qs});
        }
    }

    void theProgramsEndDuringTheLookUp()
    {
        Session s(tarvo::test::Protocol::Classic, u"localhost"_qs);
        bool begun = true;
        QMetaObject::invokeMethod(
            this, [&] { begun = s.connectObserver(); }, Qt::QueuedConnection);
        QMetaObject::invokeMethod( // comes before the answer
            this, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
        QCoreApplication::exec();
        QVERIFY(!begun);
        QVERIFY(!s.manager->isBusy());
    }

    void aPilotNeedsASimulator()
    {
        Session s;
        QVERIFY(!s.connectPilot());
        QCOMPARE(s.takeNotifications(), QStringList{needsSimulator});
    }

    void aPilotNeedsALiveSample()
    {
        Session s;
        s.sim = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(s.sim);
        QVERIFY(!s.connectPilot());
        emit s.sim->simConnectionStateChanged(true); // connected, but no sample yet
        QVERIFY(!s.connectPilot());
        emit s.sim->userAircraftDataChanged({}); // equal to what is stored
        QVERIFY(!s.connectPilot());
        emit s.sim->userAircraftDataChanged(Session::standing());
        QVERIFY(s.connectPilot());
    }

    void samplesOfZerosDontMakeASimulator()
    {
        Session s;
        s.sim = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(s.sim);
        emit s.sim->simConnectionStateChanged(false);
        for (int i = 1; i <= 5; ++i) {
            model::UserAircraftData data;
            data.heading = i;
            emit s.sim->userAircraftDataChanged(data);
        }
        QVERIFY(!s.connectPilot());
        QCOMPARE(s.takeNotifications(), QStringList{needsSimulator});
    }

    void threeLiveSamplesMakeASimulator()
    {
        Session s;
        s.sim = std::make_shared<FakeSimulator>();
        s.manager->setSimulator(s.sim);
        QSignalSpy states(s.manager.get(), &NetworkManager::simulatorConnectionStateChanged);
        for (int i = 1; i <= 3; ++i) {
            QCOMPARE(states.size(), 0);
            model::UserAircraftData data = Session::standing();
            data.heading = i;
            emit s.sim->userAircraftDataChanged(data);
            emit s.sim->userAircraftDataChanged(data); // equal ones are ignored
        }
        QCOMPARE(states.size(), 1);
        QCOMPARE(states.at(0).at(0).toBool(), true);
        QVERIFY(s.connectPilot());
    }

    void theConnectRequestComesFromAnySimulatorType_data()
    {
        QTest::addColumn<simulator::SimulatorType>("type");
        QTest::addColumn<QString>("byte");
        QTest::newRow("X-Plane 12") << simulator::SimulatorType::XPlane12 << u"5"_qs;
        QTest::newRow("2020") << simulator::SimulatorType::Msfs2020 << u"1"_qs;
        QTest::newRow("unknown") << simulator::SimulatorType::Unknown << u"0"_qs;
    }

    void theConnectRequestComesFromAnySimulatorType()
    {
        QFETCH(simulator::SimulatorType, type);
        QFETCH(QString, byte);
        Session s;
        s.addSimulator();
        s.sim->type = type;
        QVERIFY(s.connectPilot());
        EXPECT_LINE(s, u"#APAB1:SERVER:1001:secret:1:9:%1:Li Lei ZBAA"_qs.arg(byte));
    }
};

TARVO_TEST(NetworkManagerConnectTest)
#include "NetworkManagerConnectTest.moc"
