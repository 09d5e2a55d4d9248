#include "MsfsStage.h"

#include "model/Controller.h"
#include "model/VelocityVector.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <functional>

using namespace tarvo::simulator::msfs;
using tarvo::model::RadioStackState;
using tarvo::model::UserAircraftConfigData;
using tarvo::model::UserAircraftData;
using tarvo::simulator::Simulator;
using tarvo::simulator::SimulatorType;
using tarvo::test::MsfsStage;
namespace message = tarvo::practice::message;

namespace {

using AdapterCall = std::function<void(MsfsAdapter &)>;

const QString linkFailure = QStringLiteral("模拟器未启动或连接服务异常，请联系TARVO技术部");

template <class Value>
Value lastOf(const QSignalSpy &spy)
{
    return spy.last().first().value<Value>();
}

} // namespace

Q_DECLARE_METATYPE(AdapterCall)

class MsfsAdapterTest : public QObject
{
    Q_OBJECT

private slots:
    // --- the link ---

    void connectsWhenAsked()
    {
        MsfsStage stage;
        QCOMPARE(stage.wire().calls(), QStringList());
        stage.adapter->reconnectSimulator();
        QCOMPARE(stage.calls("Open").size(), 1);
        const QStringList groups{QStringLiteral("0 0 0 3 1 0 0 0"), QStringLiteral("1 1 0 3 1 0 0 0"),
                                 QStringLiteral("2 2 0 3 1 0 0 0"), QStringLiteral("3 3 0 3 1 0 0 0")};
        QStringList subscribed = stage.calls("RequestDataOnSimObject [0-3] ");
        subscribed.replaceInStrings(QStringLiteral("RequestDataOnSimObject "), QString());
        QCOMPARE(subscribed, groups);
        QCOMPARE(stage.calls("EnumerateInputEvents 60000").size(), 1);
        QCOMPARE(stage.calls("RequestDataOnSimObjectType 40001 40000 30000 2").size(), 1);
    }

    void isConnectedWithTheFirstPosition()
    {
        MsfsStage stage;
        stage.adapter->reconnectSimulator();
        stage.settle();
        QCOMPARE(stage.links, QList<bool>());
        stage.simulator.frame();
        TRY_COMPARE(stage.links, QList<bool>{true});
        stage.simulator.setFlightTime(100);
        stage.simulator.frame();
        stage.settle();
        QCOMPARE(stage.links, QList<bool>{true});
    }

    void failsWithoutTheLibrary()
    {
        MsfsStage stage;
        stage.wire().setLibraryNames({});
        stage.adapter->reconnectSimulator();
        const QStringList errors = stage.log.startingWith(QStringLiteral("MSFS SimConnect error:"));
        QCOMPARE(errors.size(), 1);
        QVERIFY(errors[0].contains(QStringLiteral("SimConnect2024.dll (Win32 error 126); Failed to load SimConnect.dll "
                                                  "(Win32 error 126)")));
        QCOMPARE(stage.links, QList<bool>{false});
        QCOMPARE(stage.failures, QStringList{linkFailure});
        stage.wire().setLibraryNames({QStringLiteral("SimConnect.dll")});
        stage.links.clear();
        stage.connectSimulator(); // the pilot tries again
        QCOMPARE(stage.failures.size(), 1);
    }

    void failsWhileTheSimulatorIsNotThere()
    {
        MsfsStage stage;
        stage.wire().failAlways(QStringLiteral("Open"));
        for (int attempt = 1; attempt <= 7; ++attempt) {
            stage.adapter->reconnectSimulator();
            QCOMPARE(stage.failures.size(), attempt); // each is the pilot's own, none is the last
            QVERIFY(!stage.log.contains(QStringLiteral("giving up")));
        }
    }

    void reconnectsAnOpenLink()
    {
        MsfsStage stage;
        stage.connectSimulator();
        stage.adapter->reconnectSimulator();
        QCOMPARE(stage.takeCalls("(Close|Open)"), QStringList{QStringLiteral("Close")});
        const QList<bool> down{false, false};
        QCOMPARE(stage.links, down);
        QCoreApplication::processEvents();
        QCOMPARE(stage.calls("Open").size(), 1);
        stage.simulator.frame();
        const QList<bool> downAndUp{false, false, true};
        TRY_COMPARE(stage.links, downAndUp);
        QCOMPARE(stage.failures, QStringList());
    }

    void askedTwiceItOpensOnce()
    {
        MsfsStage stage;
        stage.connectSimulator();
        stage.adapter->reconnectSimulator();
        stage.adapter->reconnectSimulator(); // closed by now: opens at once
        QCoreApplication::processEvents();
        QCOMPARE(stage.calls("Open").size(), 1);
        QCOMPARE(stage.calls("Close").size(), 1);
        QVERIFY(!stage.log.contains(QStringLiteral("already connected")));
    }

    void askedTwiceItFailsOnce()
    {
        MsfsStage stage;
        stage.connectSimulator();
        stage.wire().failAlways(QStringLiteral("Open"));
        stage.adapter->reconnectSimulator();
        stage.adapter->reconnectSimulator();
        QCoreApplication::processEvents();
        QCOMPARE(stage.failures.size(), 1);
    }

    void whoHearsOfTheEndMayAskForALink_data()
    {
        QTest::addColumn<int>("which"); // of the two times that it is told
        QTest::newRow("when it is told") << 1;
        QTest::newRow("when it is told again") << 2;
    }
    void whoHearsOfTheEndMayAskForALink()
    {
        QFETCH(int, which);
        MsfsStage stage;
        stage.connectSimulator();
        connect(stage.adapter.get(), &MsfsAdapter::simConnectionStateChanged, this, [&stage, which](bool up) {
            if (!up && stage.links.size() == which)
                stage.adapter->reconnectSimulator();
        });
        stage.simulator.quit();
        stage.simulator.start();
        TRY_COMPARE(stage.calls("Open").size(), 1);
        stage.simulator.frame();
        TRY_VERIFY(stage.links.endsWith(true));
        QCOMPARE(stage.failures, QStringList());
        QVERIFY(!stage.log.contains(QStringLiteral("Cannot request connect")));
    }

    void whoHearsOfAFailureMayAskForALink()
    {
        MsfsStage stage;
        stage.wire().failNext(QStringLiteral("Open"), 2);
        connect(stage.adapter.get(), &MsfsAdapter::simConnectionFailed, stage.adapter.get(),
                &MsfsAdapter::reconnectSimulator);
        stage.adapter->reconnectSimulator();
        QCOMPARE(stage.failures.size(), 1); // the next attempt is made in a later turn
        TRY_COMPARE(stage.failures.size(), 2);
        TRY_COMPARE(stage.calls("Open").size(), 3);
        stage.simulator.frame();
        TRY_VERIFY(stage.links.endsWith(true));
    }

    void survivesTheSimulatorsEnd()
    {
        MsfsStage stage;
        stage.connectSimulator();
        stage.simulator.quit();
        const QList<bool> down{false, false};
        TRY_COMPARE(stage.links, down);
        QCOMPARE(stage.failures, QStringList{linkFailure});
        QCOMPARE(stage.adapter->simulatorType(), SimulatorType::Unknown);
        stage.simulator.start();
        stage.links.clear();
        stage.connectSimulator();
        QCOMPARE(stage.adapter->simulatorType(), SimulatorType::Msfs2020);
    }

    /// However often the simulator has found fault before.
    void reconnectsAfterManyErrors()
    {
        MsfsStage stage;
        stage.connectSimulator();
        for (int i = 0; i < 6; ++i)
            stage.simulator.raise(1);
        TRY_COMPARE(stage.failures.size(), 6);
        QCOMPARE(stage.links, QList<bool>{false});
        stage.failures.clear();
        stage.adapter->reconnectSimulator();
        QCoreApplication::processEvents();
        QCOMPARE(stage.calls("Open").size(), 1);
        QCOMPARE(stage.failures, QStringList());
    }

    void learnsWhichSimulatorRuns()
    {
        MsfsStage stage;
        QCOMPARE(stage.adapter->simulatorType(), SimulatorType::Unknown);
        stage.simulator.setApplication(message::msfs2024());
        stage.adapter->reconnectSimulator();
        QCOMPARE(stage.adapter->simulatorType(), SimulatorType::Msfs2020); // by the library's name
        TRY_COMPARE(stage.adapter->simulatorType(), SimulatorType::Msfs2024);
        QVERIFY(stage.log.contains(QStringLiteral("Detected MSFS runtime profile: MSFS 2024")));
        QCOMPARE(stage.log.startingWith(QStringLiteral("Detected MSFS version:")).size(), 1);
        QCOMPARE(stage.log.startingWith(QStringLiteral("Detected SimConnect version:")).size(), 1);
    }

    void endsQuietly()
    {
        MsfsStage stage;
        stage.connectSimulator();
        stage.adapter.reset();
        QCOMPARE(stage.calls("Close").size(), 1);
        QVERIFY(!stage.wire().isOpen());
        QCOMPARE(stage.links, QList<bool>());
    }

    /// Whatever is asked for while it is closed.
    void whileClosed_data()
    {
        QTest::addColumn<AdapterCall>("call");
        const auto add = [](const char *name, const AdapterCall &call) { QTest::newRow(name) << call; };
        add("code", [](MsfsAdapter &a) { a.setTransponderCode(7000); });
        add("COM1", [](MsfsAdapter &a) { a.setCom1Frequency(118500); });
        add("COM2", [](MsfsAdapter &a) { a.setCom2Frequency(118500); });
        add("ident", [](MsfsAdapter &a) { a.transponderIdent(); });
        add("mode", [](MsfsAdapter &a) { a.transponderModeToggle(); });
        add("add", [](MsfsAdapter &a) { a.addAircraft(MsfsStage::remote("CSN1")); });
        add("configuration", [](MsfsAdapter &a) { a.updateAircraftConfiguration(MsfsStage::remote("CSN1")); });
        add("remove", [](MsfsAdapter &a) { a.removeAircraft(MsfsStage::remote("CSN1"), {}); });
        add("remove all", [](MsfsAdapter &a) { a.removeAllAircraft(); });
        add("position", [](MsfsAdapter &a) { a.positionUpdate(MsfsStage::remote("CSN1"), {}); });
        add("fast position", [](MsfsAdapter &a) { a.fastPositionUpdate(MsfsStage::remote("CSN1"), {}, {.x = 1}, {}); });
        add("heartbeat", [](MsfsAdapter &a) { a.aircraftHeartbeat(QStringLiteral("CSN1")); });
        add("stations", [](MsfsAdapter &a) { a.setControllers({}); });
        add("no stations", [](MsfsAdapter &a) { a.clearControllers(); });
        add("station", [](MsfsAdapter &a) { a.setStationCallsign(1, QStringLiteral("ZBAA_TWR")); });
        add("SELCAL", [](MsfsAdapter &a) { a.selcalAlert(); });
        add("network", [](MsfsAdapter &a) { a.networkConnected(QStringLiteral("CSN1"), {}, false); });
        add("no network", [](MsfsAdapter &a) { a.networkDisconnected(); });
    }

    void whileClosed()
    {
        QFETCH(AdapterCall, call);
        MsfsStage stage;
        call(*stage.adapter);
        QCOMPARE(stage.wire().calls(), QStringList());
        stage.connectSimulator();
        stage.simulator.quit();
        TRY_VERIFY(!stage.wire().isOpen());
        stage.wire().takeCalls();
        call(*stage.adapter);
        QCOMPARE(stage.wire().calls(), QStringList());
    }

    // --- the own aircraft ---

    void tellsTheOwnAircraft()
    {
        MsfsStage stage;
        QSignalSpy motions(stage.adapter.get(), &Simulator::userAircraftDataChanged);
        QSignalSpy configurations(stage.adapter.get(), &Simulator::userAircraftConfigDataChanged);
        QSignalSpy radios(stage.adapter.get(), &Simulator::radioStackStateChanged);
        stage.simulator.setFlightTime(200);
        stage.connectSimulator();
        const auto own = stage.simulator.flight().at(200);
        const auto told = lastOf<UserAircraftData>(motions);
        QCOMPARE(told.latitude, own.latitude);
        QCOMPARE(told.longitude, own.longitude);
        QVERIFY(told.altitudeMslM > 0);
        QCOMPARE(stage.adapter->trueAltitudeFeet(), told.altitudeMslM * 3.28084);
        QCOMPARE(stage.adapter->pressureAltitudeFeet(), told.altitudePressure);
        QCOMPARE(stage.adapter->adjustRemoteAltitude(1234.5), 1234.5);
        QVERIFY(lastOf<UserAircraftConfigData>(configurations).engineCount > 0);
        QCOMPARE(lastOf<RadioStackState>(radios).com1Volume, 100U);

        motions.clear();
        configurations.clear();
        radios.clear();
        stage.simulator.setValue("COM TRANSMIT:2", "bool", !lastOfRadio(stage).com2TransmitEnabled);
        stage.simulator.frame();
        TRY_COMPARE(radios.size(), 1);
        QCOMPARE(motions.size(), 0); // a sample of one group changes nothing of another
        QCOMPARE(configurations.size(), 0);
    }

    void writesTheRadios()
    {
        MsfsStage stage;
        QSignalSpy radios(stage.adapter.get(), &Simulator::radioStackStateChanged);
        stage.connectSimulator();
        radios.clear();
        stage.adapter->setCom1Frequency(122850);
        stage.adapter->setCom2Frequency(118500);
        QCOMPARE(radios.size(), 0); // what is shown is what the simulator says
        const QStringList events = stage.takeCalls("TransmitClientEvent");
        QCOMPARE(events.size(), 2);
        QVERIFY2(events[0].startsWith(QStringLiteral("TransmitClientEvent 0 10000 122850000 ")), qPrintable(events[0]));
        QVERIFY2(events[1].startsWith(QStringLiteral("TransmitClientEvent 0 10001 118500000 ")), qPrintable(events[1]));
        stage.simulator.frame();
        TRY_VERIFY(radios.size() == 1);
        QCOMPARE(lastOf<RadioStackState>(radios).com1Frequency, 122850U);
        QCOMPARE(lastOf<RadioStackState>(radios).com2Frequency, 118500U);
    }

    void worksTheTransponder()
    {
        MsfsStage stage;
        QSignalSpy radios(stage.adapter.get(), &Simulator::radioStackStateChanged);
        stage.connectSimulator();
        stage.adapter->setTransponderCode(4321);
        stage.simulator.frame();
        TRY_COMPARE(lastOf<RadioStackState>(radios).transponderCode, quint16(4321));
        const bool before = lastOf<RadioStackState>(radios).squawkingModeC;
        for (const bool modeC : {!before, before, !before}) {
            stage.adapter->transponderModeToggle();
            stage.simulator.frame();
            TRY_COMPARE(lastOf<RadioStackState>(radios).squawkingModeC, modeC);
            QCOMPARE(stage.simulator.value("TRANSPONDER STATE:1", "enum"), modeC ? 4.0 : 1.0);
        }
        QVERIFY(!stage.simulator.isIdenting());
        stage.adapter->transponderIdent();
        QVERIFY(stage.simulator.isIdenting());
    }

    /// The pause stands in one group; a sample of any other reads as not paused.
    void pauses()
    {
        MsfsStage stage;
        stage.connectSimulator();
        QSignalSpy pauses(stage.adapter.get(), &Simulator::simPausedStateChanged);
        stage.simulator.setPaused(true);
        stage.simulator.frame();
        TRY_COMPARE(pauses.size(), 1);
        QCOMPARE(pauses[0][0].toBool(), true);
        stage.simulator.setValue("LIGHT NAV", "bool", stage.simulator.value("LIGHT NAV", "bool") > 0 ? 0 : 1);
        stage.simulator.frame();
        TRY_COMPARE(pauses.size(), 2);
        QCOMPARE(pauses[1][0].toBool(), false);
    }

    void followsALeverOfTheSpeedBrake()
    {
        MsfsStage stage;
        stage.simulator.inputEvents().set({{.name = "HANDLING_SPOILERS", .hash = 77, .type = 0}});
        stage.connectSimulator();
        stage.settle();
        QSignalSpy configurations(stage.adapter.get(), &Simulator::userAircraftConfigDataChanged);
        stage.simulator.inputEvents().setValue("HANDLING_SPOILERS", 75);
        stage.simulator.frame();
        TRY_COMPARE(configurations.size(), 1);
        QCOMPARE(lastOf<UserAircraftConfigData>(configurations).speedbrakeRatio, 0.75);
    }

    void tellsTheTraffic()
    {
        MsfsStage stage;
        QSignalSpy snapshots(stage.adapter.get(), &Simulator::trafficSnapshotChanged);
        stage.connectSimulator();
        TRY_VERIFY(!snapshots.isEmpty());
        const QVariantList contacts = snapshots[0][0].toList();
        QCOMPARE(contacts.size(), 1); // himself
        QVERIFY(contacts[0].toMap().contains(QStringLiteral("atcId")));
    }

    void remembersTheTitle()
    {
        MsfsStage stage;
        stage.simulator.setUserAircraft("Practice\nC172 ", "N1");
        stage.connectSimulator();
        const QString line = QStringLiteral("Detected local user aircraft container title: Practice C172");
        TRY_VERIFY(stage.log.contains(line));
        stage.adapter->reconnectSimulator();
        QCoreApplication::processEvents();
        stage.settle();
        stage.settle();
        QCOMPARE(stage.log.startingWith(line).size(), 1); // the same
    }

    void writesTextsIntoTheLog()
    {
        MsfsStage stage;
        const QString text = QStringLiteral("two\nlines");
        stage.adapter->showRadioMessageSent(text);
        stage.adapter->showRadioMessageReceived(QStringLiteral("X"), text, true);
        stage.adapter->showPrivateMessageSent(QStringLiteral("X"), text);
        stage.adapter->showPrivateMessageReceived(QStringLiteral("X"), text);
        stage.adapter->showNotification(text, 0xff8000);
        const QString radio = QStringLiteral("MSFS radio message relay is not implemented yet: two lines");
        const QString priv = QStringLiteral("MSFS private message relay is not implemented yet: two lines");
        const QStringList debug{radio, radio, priv, priv};
        QCOMPARE(stage.log.texts(QtDebugMsg).filter(QStringLiteral("relay")), debug);
        QVERIFY(stage.log.texts(QtInfoMsg).contains(QStringLiteral("[MSFS] two lines")));
        QCOMPARE(stage.wire().calls(), QStringList());
    }

private:
    static RadioStackState lastOfRadio(MsfsStage &stage)
    {
        RadioStackState radio;
        radio.com2TransmitEnabled = stage.simulator.value("COM TRANSMIT:2", "bool") > 0;
        return radio;
    }
};

TARVO_TEST(MsfsAdapterTest)
#include "MsfsAdapterTest.moc"
