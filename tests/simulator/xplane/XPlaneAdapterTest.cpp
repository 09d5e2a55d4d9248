#include "AdapterSupport.h"
#include "simulator/xplane/PluginMessages.h"
#include "support/TestRegistry.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <functional>

using namespace tarvo;
using simulator::Simulator;
using simulator::SimulatorType;
using simulator::xplane::XPlaneAdapter;
namespace message = simulator::xplane::message;

namespace {

const QString failureText = QStringLiteral("模拟器未启动或连接服务异常，请联系TARVO技术部");

model::RemoteAircraft aircraft()
{
    model::RemoteAircraft one;
    one.callsign = QStringLiteral("CCA1");
    one.typeCode = QStringLiteral("B738");
    one.configuration.gearDown = true;
    return one;
}

/// A bench whose adapter has dialled and whose plugin is there; all spies are set.
struct Bench : test::XPlaneBench
{
    Bench()
    {
        startPlugin();
        makeAdapter();
        watch();
    }

    void watch()
    {
        connection = std::make_unique<QSignalSpy>(adapter.get(), &Simulator::simConnectionStateChanged);
        failure = std::make_unique<QSignalSpy>(adapter.get(), &Simulator::simConnectionFailed);
        versionChecked = std::make_unique<QSignalSpy>(adapter.get(), &Simulator::pluginVersionChecked);
        invalidVersion = std::make_unique<QSignalSpy>(adapter.get(), &Simulator::invalidPluginVersion);
        cslChecked = std::make_unique<QSignalSpy>(adapter.get(), &Simulator::cslValidationChecked);
        mapping = std::make_unique<QSignalSpy>(adapter.get(), &Simulator::trafficMappingStatusChanged);
    }

    /// Dials and begins an attempt; true when the plugin and the simulator have seen it.
    bool begin()
    {
        dial();
        adapter->reconnectSimulator();
        return QTest::qWaitFor(
            [this] { return plugin->count(QStringLiteral("VER")) == 1 && simulator.subscriptions().size() == 53; });
    }

    bool answerVersion(int version)
    {
        const qsizetype before = versionChecked->size();
        plugin->send(QStringLiteral("VER"), {version});
        return QTest::qWaitFor([&] { return versionChecked->size() == before + 1; });
    }

    bool report(quint32 id, float value, const std::function<bool()> &seen)
    {
        simulator.report(id, value);
        return QTest::qWaitFor(seen);
    }

    /// Up and running, with fresh values.
    bool connect()
    {
        if (!begin() || !answerVersion(65536))
            return false;
        tick();
        return connection->size() == 1 && connection->first().first().toBool();
    }

    std::unique_ptr<QSignalSpy> connection, failure, versionChecked, invalidVersion, cslChecked, mapping;
};

} // namespace

class XPlaneAdapterTest : public QObject
{
    Q_OBJECT

private slots:
    void connectsWithAGoodVersionAndNoPaths()
    {
        QTest::ignoreMessage(QtWarningMsg, "X-Plane CSL validation skipped because no CSL paths are configured");
        QTest::ignoreMessage(QtInfoMsg, "X-Plane connection attempt");
        Bench bench;
        QVERIFY(bench.begin());
        QCOMPARE(bench.mapping->size(), 1);
        QCOMPARE(bench.mapping->first().first().toString(), QStringLiteral("X-Plane CSL 未配置"));
        bench.tick();
        QCOMPARE(bench.connection->size(), 0); // no version yet
        QVERIFY(bench.answerVersion(65536));
        QCOMPARE(bench.invalidVersion->size(), 0);
        QCOMPARE(bench.connection->size(), 0); // only a tick connects
        bench.tick();
        QCOMPARE(bench.connection->size(), 1);
        QCOMPARE(bench.connection->first().first().toBool(), true);
        bench.tick();
        bench.endAttempt();
        QCOMPARE(bench.connection->size(), 1);
        QCOMPARE(bench.failure->size(), 0);
        QCOMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
    }

    void versionIsChecked_data()
    {
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<bool>("valid");
        QTest::newRow("65535") << QVariantList{65535} << false;
        QTest::newRow("65536") << QVariantList{65536} << true;
        QTest::newRow("larger") << QVariantList{131072} << true;
        QTest::newRow("negative") << QVariantList{-1} << false;
        QTest::newRow("none") << QVariantList{} << false;
    }

    void versionIsChecked()
    {
        QFETCH(QVariantList, arguments);
        QFETCH(bool, valid);
        Bench bench;
        QVERIFY(bench.begin());
        bench.plugin->send(QStringLiteral("VER"), arguments);
        QTRY_COMPARE(bench.versionChecked->size(), 1);
        QCOMPARE(bench.versionChecked->first().first().toBool(), valid);
        QCOMPARE(bench.invalidVersion->size(), valid ? 0 : 1);
        bench.tick();
        QCOMPARE(bench.connection->size(), valid ? 1 : 0);
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), valid ? 0 : 1);
    }

    void pathsAreValidated_data()
    {
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QString>("status");
        QTest::newRow("good") << true << QStringLiteral("X-Plane CSL 有效");
        QTest::newRow("bad") << false << QStringLiteral("X-Plane CSL 无效");
    }

    void pathsAreValidated()
    {
        QFETCH(bool, valid);
        QTest::ignoreMessage(QtInfoMsg,
                             valid ? "X-Plane CSL validation result: true" : "X-Plane CSL validation result: false");
        Bench bench;
        const QTemporaryDir first;
        const QTemporaryDir second;
        const QString log = QStringLiteral("^Validating X-Plane CSL paths: .*\"%1/?\", \"%2/?\"");
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(log.arg(first.path(), second.path())));
        bench.config.set(config::xplaneCsl, {first.path(), second.path()});
        QVERIFY(bench.begin());
        QCOMPARE(bench.mapping->takeFirst().first().toString(), QStringLiteral("X-Plane CSL 验证中：2 个路径"));
        QTRY_COMPARE(bench.plugin->names(), (QStringList{QStringLiteral("VER"), QStringLiteral("CSL")}));
        const QStringList paths = bench.config.get(config::xplaneCsl);
        QCOMPARE(bench.plugin->messages().last(), message::csl(paths));
        QVERIFY(bench.answerVersion(65536));
        bench.plugin->send(QStringLiteral("CSL"), {QVariantList{paths.first(), paths.last()}, valid});
        QTRY_COMPARE(bench.cslChecked->size(), 1);
        QCOMPARE(bench.cslChecked->first().first().toBool(), valid);
        QTEST(bench.mapping->takeFirst().first().toString(), "status");
        bench.tick();
        QCOMPARE(bench.connection->size(), valid ? 1 : 0);
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), valid ? 0 : 1);
    }

    void attemptEndsInItsTimeOut()
    {
        Bench bench;
        QVERIFY(bench.begin());
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), 1);
        QCOMPARE(bench.failure->first().first().toString(), failureText);
        QVERIFY(bench.answerVersion(65536)); // too late
        bench.tick();
        QCOMPARE(bench.connection->size(), 0);
        bench.plugin->clear();
        bench.adapter->reconnectSimulator(); // the pilot tries again
        QTRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        QVERIFY(bench.answerVersion(65536));
        bench.tick();
        QCOMPARE(bench.connection->size(), 1);
    }

    void attemptNeedsFreshValues()
    {
        Bench bench;
        QVERIFY(bench.begin());
        QVERIFY(bench.answerVersion(65536));
        bench.clock.advance(1000); // from 15 seconds, which an attempt assumes, to 16
        bench.tick();
        QCOMPARE(bench.connection->size(), 0);
        QSignalSpy version(bench.adapter.get(), &Simulator::xplaneVersionUpdated);
        QVERIFY(bench.report(52, 120105, [&] { return version.size() == 1; }));
        bench.clock.advance(15'999);
        bench.tick();
        QCOMPARE(bench.connection->size(), 1);
    }

    void attemptBeforeTheDialWaitsForIt()
    {
        Bench bench;
        bench.adapter->reconnectSimulator();
        QVERIFY(!bench.adapter->findChild<QTimer *>(QStringLiteral("attempt"))->isActive());
        bench.adapter->addAircraft(aircraft());
        bench.adapter->updateAircraftConfiguration(aircraft());
        bench.dial();
        QTRY_COMPARE(bench.plugin->names(),
                     (QStringList{QStringLiteral("ADD"), QStringLiteral("ACCONF"), QStringLiteral("VER")}));
        QTRY_COMPARE(bench.simulator.subscriptions().size(), 53);
        QVERIFY(bench.adapter->findChild<QTimer *>(QStringLiteral("attempt"))->isActive());
    }

    void dialWithoutAnAttemptSaysNothing()
    {
        Bench bench;
        bench.dial();
        QTRY_VERIFY(bench.plugin->hasClient());
        bench.adapter->networkDisconnected();
        QTRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("DISCON")});
        QVERIFY(bench.simulator.datagrams().isEmpty());
    }

    void pluginThatComesLaterIsFound()
    {
        Bench bench;
        bench.plugin.reset();
        bench.dial();
        bench.adapter->reconnectSimulator();
        bench.startPlugin();
        QTRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        QVERIFY(bench.answerVersion(65536));
        bench.tick();
        QCOMPARE(bench.connection->size(), 1);
    }

    void reconnectWhileConnectedDropsTheLinkFirst()
    {
        Bench bench;
        QVERIFY(bench.connect());
        bench.simulator.clear();
        bench.plugin->clear();
        bench.adapter->reconnectSimulator();
        QCOMPARE(bench.connection->size(), 2);
        QCOMPARE(bench.connection->last().first().toBool(), false);
        QTRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        QTRY_COMPARE(bench.simulator.subscriptions().size(), 53);
        bench.tick();
        QCOMPARE(bench.connection->size(), 2); // the old version reply does not count any more
        QVERIFY(bench.answerVersion(65536));
        bench.tick();
        QCOMPARE(bench.connection->size(), 3);
        QCOMPARE(bench.connection->last().first().toBool(), true);
    }

    void silentSimulatorIsLostAfterSixteenSeconds()
    {
        Bench bench;
        QVERIFY(bench.connect());
        QSignalSpy user(bench.adapter.get(), &Simulator::userAircraftDataChanged);
        QSignalSpy paused(bench.adapter.get(), &Simulator::simPausedStateChanged);
        bench.simulator.report({{20, 3048.0F}, {51, 1.0F}, {52, 115000.0F}});
        QTRY_COMPARE(paused.size(), 1);
        bench.publish();
        QCOMPARE(user.last().first().value<model::UserAircraftData>().altitudeMslM, 3048.0);
        bench.clock.advance(15'000);
        bench.tick();
        QCOMPARE(bench.connection->size(), 1);
        bench.clock.advance(1000);
        bench.tick();
        QCOMPARE(bench.connection->size(), 2);
        QCOMPARE(bench.connection->last().first().toBool(), false);
        bench.publish();
        QCOMPARE(user.last().first().value<model::UserAircraftData>().altitudeMslM, 0.0);
        QCOMPARE(bench.adapter->simulatorType(), SimulatorType::XPlane11); // the version stays
        bench.tick();
        QCOMPARE(bench.connection->size(), 2);
    }

    void shutdownDropsTheLink()
    {
        Bench bench;
        QVERIFY(bench.connect());
        bench.plugin->send(QStringLiteral("SHUTDOWN"));
        QTRY_COMPARE(bench.connection->size(), 2);
        QCOMPARE(bench.connection->last().first().toBool(), false);
        bench.tick();
        QCOMPARE(bench.connection->size(), 2); // there is no attempt under way
    }

    void shutdownWhileNotConnectedTellsItAndForgetsTheVersion()
    {
        Bench bench;
        QVERIFY(bench.begin());
        QVERIFY(bench.answerVersion(65536));
        bench.plugin->send(QStringLiteral("SHUTDOWN"));
        QTRY_COMPARE(bench.connection->size(), 1);
        QCOMPARE(bench.connection->first().first().toBool(), false);
        bench.tick();
        QCOMPARE(bench.connection->size(), 1); // the version that came before does not count any more
        QVERIFY(bench.answerVersion(65536));
        bench.tick();
        QCOMPARE(bench.connection->size(), 2); // the attempt itself goes on
        QCOMPARE(bench.connection->last().first().toBool(), true);
    }

    void receiverMayReconnectAtOnce_data()
    {
        QTest::addColumn<bool>("bySilence");
        QTest::newRow("after a shutdown") << false;
        QTest::newRow("after silence") << true;
    }

    void receiverMayReconnectAtOnce()
    {
        QFETCH(bool, bySilence);
        Bench bench;
        QVERIFY(bench.connect());
        bench.simulator.clear();
        bench.plugin->clear();
        QObject::connect(bench.adapter.get(), &Simulator::simConnectionStateChanged, this, [&bench](bool connected) {
            if (!connected)
                bench.adapter->reconnectSimulator();
        });
        if (bySilence) {
            bench.clock.advance(16'000);
            bench.tick();
        } else {
            bench.plugin->send(QStringLiteral("SHUTDOWN"));
        }
        QTRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        QTRY_COMPARE(bench.simulator.subscriptions().size(), 53);
        QVERIFY(bench.answerVersion(65536));
        bench.tick();
        QCOMPARE(bench.connection->size(), 3); // true, false, true
        QCOMPARE(bench.connection->last().first().toBool(), true);
    }

    void verdictIsTheLastOfItsSignals_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QStringList>("signalled");
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
        Bench bench;
        QVERIFY(bench.begin());
        QStringList order;
        const auto note = [&order](const char *what) { return [&order, what] { order << QString::fromLatin1(what); }; };
        const XPlaneAdapter *adapter = bench.adapter.get();
        connect(adapter, &Simulator::invalidPluginVersion, this, note("invalid"));
        connect(adapter, &Simulator::pluginVersionChecked, this, note("version"));
        connect(adapter, &Simulator::trafficMappingStatusChanged, this, note("mapping"));
        connect(adapter, &Simulator::cslValidationChecked, this, note("csl"));
        bench.plugin->send(name, arguments);
        QTRY_COMPARE(order, signalled);
    }

    void textIsHandedOnUnlessEmpty_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QStringList>("signalled");
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
        Bench bench;
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
        QTRY_VERIFY(bench.plugin->hasClient());
        bench.plugin->send(name, arguments);
        QVERIFY(bench.answerVersion(65536)); // messages keep their order: this is the last one
        QTEST(signalled, "signalled");
    }

    void signalsComeOnTheMainThread()
    {
        Bench bench;
        bench.dial();
        QThread *thread = nullptr;
        connect(
            bench.adapter.get(), &Simulator::aircraftAddedToSim, bench.adapter.get(),
            [&thread] { thread = QThread::currentThread(); }, Qt::DirectConnection);
        QTRY_VERIFY(bench.plugin->hasClient());
        bench.plugin->send(QStringLiteral("ADDED"), {QStringLiteral("A")});
        QTRY_VERIFY(thread);
        QCOMPARE(thread, QThread::currentThread());
    }

    void operationsBecomeMessages_data()
    {
        QTest::addColumn<std::function<void(Simulator &)>>("operation");
        QTest::addColumn<QByteArray>("message");
        const auto add = [](const char *name, std::function<void(Simulator &)> operation, const QByteArray &bytes) {
            QTest::newRow(name) << std::move(operation) << bytes;
        };
        const auto one = aircraft();
        const QString a = QStringLiteral("A");
        const QString b = QStringLiteral("B");
        const model::AircraftVisualState at{.latitude = 1};
        model::Controller station;
        station.callsign = a;
        station.frequency = 118275;
        station.valid = true;
        add(
            "add", [=](Simulator &s) { s.addAircraft(one); }, message::add(one));
        add(
            "configuration", [=](Simulator &s) { s.updateAircraftConfiguration(one); }, message::configuration(one));
        add(
            "remove", [=](Simulator &s) { s.removeAircraft(one, a); }, message::remove(one.callsign, a));
        add(
            "remove all", [](Simulator &s) { s.removeAllAircraft(); }, message::removeAll());
        add(
            "controllers", [=](Simulator &s) { s.setControllers({station}); }, message::controllers({station}));
        add(
            "no controllers", [](Simulator &s) { s.clearControllers(); }, message::controllers({}));
        add(
            "position", [=](Simulator &s) { s.positionUpdate(one, at); }, message::position(one, at));
        add(
            "fast position",
            [=](Simulator &s) {
                s.fastPositionUpdate(one, at, {1, 2, 3}, {4, 5, 6});
            },
            message::fastPosition(one, at, {1, 2, 3}, {4, 5, 6}));
        add(
            "heartbeat", [=](Simulator &s) { s.aircraftHeartbeat(a); }, message::heartbeat(a));
        add(
            "radio sent", [=](Simulator &s) { s.showRadioMessageSent(a); }, message::radioSent(a));
        add(
            "radio received", [=](Simulator &s) { s.showRadioMessageReceived(a, b, true); },
            message::radioReceived(a, b, true));
        add(
            "notification", [=](Simulator &s) { s.showNotification(a, 255); }, message::notification(a, 255));
        add(
            "private sent", [=](Simulator &s) { s.showPrivateMessageSent(a, b); }, message::privateSent(a, b));
        add(
            "private received", [=](Simulator &s) { s.showPrivateMessageReceived(a, b); },
            message::privateReceived(a, b));
        add(
            "connected", [=](Simulator &s) { s.networkConnected(a, b, true); }, message::networkConnected(a, b, true));
        add(
            "disconnected", [](Simulator &s) { s.networkDisconnected(); }, message::networkDisconnected());
        add(
            "station", [=](Simulator &s) { s.setStationCallsign(2, a); }, message::stationCallsign(2, a));
    }

    void operationsBecomeMessages()
    {
        QFETCH(std::function<void(Simulator &)>, operation);
        QFETCH(QByteArray, message);
        Bench bench;
        operation(*bench.adapter); // before the dial, where nothing is lost
        bench.dial();
        bench.adapter->selcalAlert(); // has no message
        operation(*bench.adapter);    // and after it, connected or not
        QTRY_COMPARE(bench.plugin->messages(), (QList<QByteArray>{message, message}));
    }

    void radioEntriesAreWritten()
    {
        Bench bench;
        bench.adapter->setTransponderCode(2000);
        bench.adapter->setCom1Frequency(118275);
        bench.adapter->setCom2Frequency(121800);
        bench.adapter->transponderIdent();
        const QList<test::DatarefPeer::Write> expected{
            {QStringLiteral("sim/cockpit/radios/transponder_code"), 2000.0F},
            {QStringLiteral("sim/cockpit2/radios/actuators/com1_frequency_hz_833"), 118275.0F},
            {QStringLiteral("sim/cockpit2/radios/actuators/com2_frequency_hz_833"), 121800.0F}};
        QTRY_COMPARE(bench.simulator.commands(), QStringList{QStringLiteral("sim/transponder/transponder_ident")});
        QCOMPARE(bench.simulator.writes(), expected);
    }

    void transponderModeToggles()
    {
        Bench bench;
        QVERIFY(bench.begin());
        bench.simulator.clear();
        const QString dataref = QStringLiteral("sim/cockpit/radios/transponder_mode");
        bench.adapter->transponderModeToggle();
        QTRY_COMPARE(bench.simulator.commands(), QStringList{QStringLiteral("sim/transponder/transponder_alt")});
        QCOMPARE(bench.simulator.writes(), (QList<test::DatarefPeer::Write>{{dataref, 3.0F}}));
        QVERIFY(bench.simulator.datagrams().first().startsWith("DREF"));
        QSignalSpy radio(bench.adapter.get(), &Simulator::radioStackStateChanged);
        QVERIFY(bench.report(10, 3, [&] {
            return !radio.isEmpty() && radio.last().first().value<model::RadioStackState>().squawkingModeC;
        }));
        bench.simulator.clear();
        bench.adapter->transponderModeToggle();
        QTRY_COMPARE(bench.simulator.commands(), QStringList{QStringLiteral("sim/transponder/transponder_standby")});
        QCOMPARE(bench.simulator.writes(), (QList<test::DatarefPeer::Write>{{dataref, 1.0F}}));
    }

    void altitudesFollowTheValues()
    {
        Bench bench;
        QVERIFY(bench.begin());
        QCOMPARE(bench.adapter->simulatorType(), SimulatorType::Unknown);
        QSignalSpy version(bench.adapter.get(), &Simulator::xplaneVersionUpdated);
        bench.simulator.report({{20, 1000.0F}, {22, 3300.0F}, {23, 29.0F}, {24, -100.0F}, {52, 120105.0F}});
        QTRY_COMPARE(version.size(), 1);
        QCOMPARE(version.first().first().toInt(), 120105);
        QCOMPARE(bench.adapter->simulatorType(), SimulatorType::XPlane12);
        QCOMPARE(bench.adapter->pressureAltitudeFeet(), 3180.84);
        QCOMPARE(bench.adapter->trueAltitudeFeet(), 3300.0);
        QCOMPARE(bench.adapter->adjustRemoteAltitude(3000), 3100.0);
    }

    void dialFailureIsReportedAndTheAttemptTimesOut()
    {
        Bench bench;
        bench.config.set(config::xplaneNetworkAddress, QStringLiteral("::1"));
        QSignalSpy error(bench.adapter.get(), &Simulator::nngSocketError);
        bench.dial();
        QCOMPARE(error.size(), 1);
        QVERIFY(error.first().first().toString().startsWith(QStringLiteral("Error dialing socket (tcp://::1:::1): ")));
        bench.adapter->reconnectSimulator();
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), 1);
    }

    void timersRunAsTold_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("interval");
        QTest::addColumn<bool>("once");
        QTest::addColumn<bool>("running");
        QTest::newRow("dial") << QStringLiteral("dial") << 500 << true << true;
        QTest::newRow("tick") << QStringLiteral("tick") << 1000 << false << true;
        QTest::newRow("publish") << QStringLiteral("publish") << 50 << false << true;
        QTest::newRow("attempt") << QStringLiteral("attempt") << 3000 << true << false;
    }

    void timersRunAsTold()
    {
        QFETCH(QString, name);
        Bench bench;
        const auto *timer = bench.adapter->findChild<QTimer *>(name);
        QVERIFY(timer);
        QTEST(timer->interval(), "interval");
        QTEST(timer->isSingleShot(), "once");
        QTEST(timer->isActive(), "running");
        QCOMPARE(bench.adapter->findChildren<QTimer *>().size(), 4); // and no others
    }

    void dialsByItself()
    {
        Bench bench;
        bench.adapter->reconnectSimulator();
        QTRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        bench.plugin->send(QStringLiteral("VER"), {65536});
        QTRY_COMPARE(bench.connection->size(), 1); // by its own timers
    }

    void mayBeDestroyedAtAnyMoment()
    {
        const QList<std::function<void(Bench &)>> moments{
            [](Bench &) {},
            [](Bench &bench) { bench.adapter->reconnectSimulator(); },
            [](Bench &bench) { bench.dial(); },
            [](Bench &bench) {
                bench.dial();
                bench.adapter->reconnectSimulator();
            },
            [](Bench &bench) { QVERIFY(bench.begin()); },
            [](Bench &bench) { QVERIFY(bench.connect()); },
            [](Bench &bench) {
                QVERIFY(bench.connect());
                for (int i = 0; i < 500; ++i)
                    bench.plugin->send(QStringLiteral("ADDED"), {QStringLiteral("A")});
            },
            [](Bench &bench) {
                QVERIFY(bench.connect());
                bench.plugin.reset();
            },
        };
        for (const auto &moment : moments) {
            Bench bench;
            moment(bench);
            QVERIFY(!QTest::currentTestFailed());
            bench.adapter.reset(); // would hang if the thread did not leave
            if (!bench.plugin)
                bench.startPlugin();
            QTRY_VERIFY(!bench.plugin->hasClient());
            // The plugin speaks to one client only: a successor gets through when nothing is left of this one.
            bench.makeAdapter();
            bench.dial();
            // Sent more than once: what goes out while the first one is still leaving is lost.
            QTRY_VERIFY((bench.adapter->networkDisconnected(), bench.plugin->count(QStringLiteral("DISCON")) > 0));
        }
    }

    void lastWordsReachThePlugin()
    {
        Bench bench;
        QVERIFY(bench.connect());
        bench.plugin->clear();
        bench.adapter->removeAllAircraft();
        bench.adapter->clearControllers();
        bench.adapter.reset();
        QTRY_COMPARE(bench.plugin->messages(), (QList<QByteArray>{message::removeAll(), message::controllers({})}));
    }
};

TARVO_TEST(XPlaneAdapterTest)
#include "XPlaneAdapterTest.moc"
