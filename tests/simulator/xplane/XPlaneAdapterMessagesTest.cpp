#include "XPlaneBench.h"
#include "model/VelocityVector.h"
#include "simulator/xplane/PluginMessages.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QThread>

using namespace tarvo;
using simulator::Simulator;
using simulator::SimulatorType;
using simulator::xplane::XPlaneAdapter;
using test::AdapterBench;
namespace message = simulator::xplane::message;

class XPlaneAdapterMessagesTest : public QObject
{
    Q_OBJECT

private slots:
    void verdictIsTheLastOfItsSignals_data()
    {
        tarvo::test::columns<QString, QVariantList, QStringList>("name", "arguments", "signalled");
        const QString invalid = QStringLiteral("invalid");
        const QString version = QStringLiteral("version");
        const QStringList csl{QStringLiteral("mapping"), QStringLiteral("csl")};
        QTest::newRow("old version") << QStringLiteral("VER") << QVariantList{65535} << QStringList{invalid, version};
        QTest::newRow("no version") << QStringLiteral("VER") << QVariantList{} << QStringList{invalid, version};
        QTest::newRow("good version") << QStringLiteral("VER") << QVariantList{65536} << QStringList{version};
        QTest::newRow("good paths") << QStringLiteral("CSL") << QVariantList{QVariantList{}, true} << csl;
        QTest::newRow("bad paths") << QStringLiteral("CSL") << QVariantList{QVariantList{}, false} << csl;
    }

    void verdictIsTheLastOfItsSignals()
    {
        QFETCH(QString, name);
        QFETCH(QVariantList, arguments);
        QFETCH(QStringList, signalled);
        AdapterBench bench;
        QVERIFY(bench.begin());
        QStringList order;
        const auto note = [&order](const char *what) { return [&order, what] { order << QString::fromLatin1(what); }; };
        const XPlaneAdapter *adapter = bench.adapter.get();
        connect(adapter, &Simulator::invalidPluginVersion, this, note("invalid"));
        connect(adapter, &Simulator::pluginVersionChecked, this, note("version"));
        connect(adapter, &Simulator::trafficMappingStatusChanged, this, note("mapping"));
        connect(adapter, &Simulator::cslValidationChecked, this, note("csl"));
        bench.plugin->send(name, arguments);
        TRY_COMPARE(order, signalled);
    }

    void textIsHandedOnUnlessEmpty_data()
    {
        tarvo::test::columns<QString, QVariantList, QStringList>("name", "arguments", "signalled");
        const auto add = [](const char *name, const char *message, const QVariantList &arguments,
                            const QStringList &signalled) {
            QTest::newRow(name) << QString::fromLatin1(message) << arguments << signalled;
        };
        const QString a = QStringLiteral("A");
        const QString b = QStringLiteral("你好");
        const QString none;
        add("ADDED", "ADDED", {a}, {QStringLiteral("added"), a});
        add("ADDED empty", "ADDED", {none}, {});
        add("DELETED", "DELETED", {a}, {QStringLiteral("removed"), a});
        add("DELETED empty", "DELETED", {none}, {});
        add("REQSTATION", "REQSTATION", {a}, {QStringLiteral("station"), a});
        add("REQSTATION empty", "REQSTATION", {none}, {});
        add("RDIOSENT", "RDIOSENT", {b}, {QStringLiteral("radio"), b});
        add("RDIOSENT empty", "RDIOSENT", {none}, {});
        add("PRIVSENT", "PRIVSENT", {a, b}, {QStringLiteral("private"), a, b});
        add("PRIVSENT without a text", "PRIVSENT", {a, none}, {});
        add("PRIVSENT to nobody", "PRIVSENT", {none, b}, {});
        add("FORCEDISC", "FORCEDISC", {a}, {QStringLiteral("disconnect"), a});
        add("FORCEDISC empty", "FORCEDISC", {none}, {QStringLiteral("disconnect"), none});
        add("unknown", "HELLO", {a}, {});
    }

    void textIsHandedOnUnlessEmpty()
    {
        QFETCH(QString, name);
        QFETCH(QVariantList, arguments);
        AdapterBench bench;
        bench.dial();
        QStringList signalled;
        const auto note = [&signalled](const char *what) {
            return [&signalled, what](const QString &text) { signalled << QString::fromLatin1(what) << text; };
        };
        const XPlaneAdapter *adapter = bench.adapter.get();
        connect(adapter, &Simulator::aircraftAddedToSim, this, note("added"));
        connect(adapter, &Simulator::aircraftRemovedFromSim, this, note("removed"));
        connect(adapter, &Simulator::requestStationInfo, this, note("station"));
        connect(adapter, &Simulator::radioMessageSent, this, note("radio"));
        connect(adapter, &Simulator::forceDisconnect, this, note("disconnect"));
        connect(adapter, &Simulator::privateMessageSent, this,
                [&](const QString &to, const QString &text) { signalled << QStringLiteral("private") << to << text; });
        TRY_VERIFY(bench.plugin->hasClient());
        bench.plugin->send(name, arguments);
        QVERIFY(bench.answerVersion()); // messages keep their order: this is the last one
        QTEST(signalled, "signalled");
    }

    void signalsComeOnTheMainThread()
    {
        AdapterBench bench;
        bench.dial();
        QThread *thread = nullptr;
        connect(
            bench.adapter.get(), &Simulator::aircraftAddedToSim, bench.adapter.get(),
            [&thread] { thread = QThread::currentThread(); }, Qt::DirectConnection);
        TRY_VERIFY(bench.plugin->hasClient());
        bench.plugin->send(QStringLiteral("ADDED"), {QStringLiteral("A")});
        TRY_VERIFY(thread);
        QCOMPARE(thread, QThread::currentThread());
    }

    void operationsBecomeMessages()
    {
        const auto one = test::aircraftWithGearDown();
        const QString a = QStringLiteral("A");
        const QString b = QStringLiteral("B");
        const model::AircraftVisualState at{.latitude = 1};
        const QList<model::Controller> stations{test::station(a, 118275)};
        const auto operate = [&](Simulator &s) {
            s.addAircraft(one);
            s.updateAircraftConfiguration(one);
            s.removeAircraft(one, a);
            s.removeAllAircraft();
            s.setControllers(stations);
            s.clearControllers();
            s.aircraftHeartbeat(a);
            s.showRadioMessageSent(a);
            s.showRadioMessageReceived(a, b, true);
            s.showNotification(a, 255);
            s.showPrivateMessageSent(a, b);
            s.showPrivateMessageReceived(a, b);
            s.networkConnected(a, b, true);
            s.networkDisconnected();
            s.setStationCallsign(2, a);
            s.selcalAlert(); // has no message
        };
        const QList<QByteArray> messages{message::add(one),
                                         message::configuration(one),
                                         message::remove(one.callsign, a),
                                         message::removeAll(),
                                         message::controllers(stations),
                                         message::controllers({}),
                                         message::heartbeat(a),
                                         message::radioSent(a),
                                         message::radioReceived(a, b, true),
                                         message::notification(a, 255),
                                         message::privateSent(a, b),
                                         message::privateReceived(a, b),
                                         message::networkConnected(a, b, true),
                                         message::networkDisconnected(),
                                         message::stationCallsign(2, a)};
        const QList<QByteArray> positions{message::position(one, at),
                                          message::fastPosition(one, at, {1, 2, 3}, {4, 5, 6})};
        AdapterBench bench;
        operate(*bench.adapter); // before the dial, where nothing is lost
        bench.dial();
        operate(*bench.adapter); // and after it, connected or not
        TRY_COMPARE(bench.plugin->messages(), messages + messages);
        bench.plugin->clear();
        bench.adapter->positionUpdate(one, at);
        bench.adapter->fastPositionUpdate(one, at, {1, 2, 3}, {4, 5, 6});
        TRY_COMPARE(bench.plugin->messages(), positions);
    }

    void waitingPositionsGiveWay_data()
    {
        tarvo::test::columns<std::function<void(Simulator &)>, QByteArray>("operation", "message");
        const auto one = test::remoteAircraft();
        const auto add = [](const char *name, std::function<void(Simulator &)> operation, const QByteArray &bytes) {
            QTest::newRow(name) << std::move(operation) << bytes;
        };
        add(
            "addition", [=](Simulator &s) { s.addAircraft(one); }, message::add(one));
        add(
            "removal", [=](Simulator &s) { s.removeAircraft(one, {}); }, message::remove(one.callsign, {}));
        add(
            "removal of all", [](Simulator &s) { s.removeAllAircraft(); }, message::removeAll());
        add(
            "fast position", [=](Simulator &s) { s.fastPositionUpdate(one, {}, {}, {}); },
            message::fastPosition(one, {}, {}, {}));
        add(
            "position", [=](Simulator &s) { s.positionUpdate(one, {}); }, message::position(one, {}));
    }

    void waitingPositionsGiveWay()
    {
        QFETCH(std::function<void(Simulator &)>, operation);
        QFETCH(QByteArray, message);
        AdapterBench bench;
        bench.adapter->positionUpdate(test::remoteAircraft(), {.latitude = 1});
        operation(*bench.adapter);
        bench.dial();
        TRY_COMPARE(bench.plugin->messages(), QList<QByteArray>{message});
    }

    void radioEntriesAreWritten()
    {
        AdapterBench bench;
        bench.adapter->setTransponderCode(2000);
        bench.adapter->setCom1Frequency(118275);
        bench.adapter->setCom2Frequency(121800);
        bench.adapter->transponderIdent();
        const QList<test::DatarefPeer::Write> expected{
            {QStringLiteral("sim/cockpit/radios/transponder_code"), 2000.0F},
            {QStringLiteral("sim/cockpit2/radios/actuators/com1_frequency_hz_833"), 118275.0F},
            {QStringLiteral("sim/cockpit2/radios/actuators/com2_frequency_hz_833"), 121800.0F}};
        TRY_COMPARE(bench.simulator.commands(), QStringList{QStringLiteral("sim/transponder/transponder_ident")});
        QCOMPARE(bench.simulator.writes(), expected);
    }

    void transponderModeToggles()
    {
        AdapterBench bench;
        QVERIFY(bench.begin());
        bench.simulator.clear();
        const QString dataref = QStringLiteral("sim/cockpit/radios/transponder_mode");
        bench.adapter->transponderModeToggle();
        TRY_COMPARE(bench.simulator.commands(), QStringList{QStringLiteral("sim/transponder/transponder_alt")});
        QCOMPARE(bench.simulator.writes(), (QList<test::DatarefPeer::Write>{{dataref, 3.0F}}));
        QVERIFY(bench.simulator.datagrams().first().startsWith("DREF"));
        QSignalSpy radio(bench.adapter.get(), &Simulator::radioStackStateChanged);
        QVERIFY(bench.report(10, 3, [&] {
            return !radio.isEmpty() && radio.last().first().value<model::RadioStackState>().squawkingModeC;
        }));
        bench.simulator.clear();
        bench.adapter->transponderModeToggle();
        TRY_COMPARE(bench.simulator.commands(), QStringList{QStringLiteral("sim/transponder/transponder_standby")});
        QCOMPARE(bench.simulator.writes(), (QList<test::DatarefPeer::Write>{{dataref, 1.0F}}));
    }

    void altitudesFollowTheValues()
    {
        AdapterBench bench;
        QVERIFY(bench.begin());
        QCOMPARE(bench.adapter->simulatorType(), SimulatorType::Unknown);
        bench.simulator.report({{20, 1000.0F}, {22, 3300.0F}, {23, 29.0F}, {24, -100.0F}, {52, 120105.0F}});
        TRY_COMPARE(bench.version->size(), 1);
        QCOMPARE(bench.version->first().first().toInt(), 120105);
        QCOMPARE(bench.adapter->simulatorType(), SimulatorType::XPlane12);
        QCOMPARE(bench.adapter->pressureAltitudeFeet(), 3180.84);
        QCOMPARE(bench.adapter->trueAltitudeFeet(), 3300.0);
        QCOMPARE(bench.adapter->adjustRemoteAltitude(3000), 3100.0);
    }
};

TARVO_TEST(XPlaneAdapterMessagesTest)
#include "XPlaneAdapterMessagesTest.moc"
