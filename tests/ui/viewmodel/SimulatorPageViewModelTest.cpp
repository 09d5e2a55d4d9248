#include "ui/viewmodel/SimulatorPageViewModel.h"

#include "SimulatorPageFixture.h"
#include "support/TestRegistry.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <functional>
#include <limits>

using namespace tarvo::test;
using tarvo::ui::viewmodel::SimulatorPageViewModel;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

} // namespace

class SimulatorPageViewModelTest : public QObject
{
    Q_OBJECT

private slots:
    void startsAsTabled_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QByteArray>("notify");
        const auto row = [](const char *name, const QVariant &value, const char *notify) {
            QTest::newRow(name) << value << QByteArray(notify);
        };
        row("currentMode", QStringLiteral("NONE"), "stateChanged");
        for (const char *text : {"simulatorFamily", "simulatorDisplayName"})
            row(text, QStringLiteral("未选择"), "stateChanged");
        for (const char *flag : {"msfsMode", "xplaneMode", "simulatorConnected"})
            row(flag, false, "stateChanged");
        row("simulatorStatusText", QStringLiteral("未连接"), "stateChanged");
        for (const char *text : {"pluginStatusText", "cslStatusText", "trafficMappingStatusText"})
            row(text, QStringLiteral("未知"), "stateChanged");
        row("xplaneVersionText", QStringLiteral("未获取"), "stateChanged");
        for (const char *flag :
             {"simPaused", "onGround", "gearDown", "avionicsPowerOn", "com1ReceiveEnabled", "com2ReceiveEnabled",
              "com1TransmitEnabled", "com2TransmitEnabled", "squawkingModeC", "squawkingIdent", "beaconOn",
              "landingLightsOn", "taxiLightsOn", "navLightsOn", "strobesOn", "speedbrakeArmed"})
            row(flag, false, "dataChanged");
        for (const char *number :
             {"latitude", "longitude", "altitudeMslM", "altitudeAglM", "altitudePressure", "heading", "groundSpeed",
              "pitch", "bank", "latitudeVelocity", "longitudeVelocity", "altitudeVelocity", "pitchVelocity",
              "headingVelocity", "bankVelocity", "noseWheelAngle", "flapsRatio", "speedbrakeRatio"})
            row(number, 0.0, "dataChanged");
        for (const char *number : {"com1Volume", "com2Volume", "engineCount"})
            row(number, 0, "dataChanged");
        for (const char *text : {"com1Frequency", "com2Frequency"})
            row(text, QStringLiteral("0.000"), "dataChanged");
        row("transponderCode", QStringLiteral("0000"), "dataChanged");
        for (const char *text : {"flapsLabel", "speedbrakeLabel"})
            row(text, QStringLiteral("0%"), "dataChanged");
        for (const char *text : {"activeTransmitLabel", "activeReceiveLabel"})
            row(text, QStringLiteral("无"), "dataChanged");
        row("motionSummary", QStringLiteral("暂无运动数据"), "dataChanged");
        row("engineSummary", QStringLiteral("未检测到发动机"), "dataChanged");
        row("engineStates", QVariantList(), "dataChanged");
        for (const char *list : {"trafficContacts", "plotContacts"})
            row(list, QVariantList(), "trafficChanged");
        row("trafficSummary", QStringLiteral("附近暂无交通目标"), "trafficChanged");
    }

    void startsAsTabled()
    {
        QFETCH(QVariant, value);
        QFETCH(QByteArray, notify);
        const SimulatorPageViewModel model;
        const QMetaObject *type = model.metaObject();
        const QMetaProperty property = type->property(type->indexOfProperty(QTest::currentDataTag()));
        QVERIFY(property.isValid());
        QCOMPARE(property.read(&model), value);
        QCOMPARE(property.notifySignal().name(), notify);
        QVERIFY(!property.isWritable());
    }

    void theSignalsStandInOrder()
    {
        QStringList signalNames;
        const QMetaObject &type = SimulatorPageViewModel::staticMetaObject;
        for (int i = type.methodOffset(); i < type.methodCount(); ++i)
            if (type.method(i).methodType() == QMetaMethod::Signal)
                signalNames << QString::fromLatin1(type.method(i).methodSignature());
        QCOMPARE(signalNames, (QStringList{QStringLiteral("stateChanged()"), QStringLiteral("dataChanged()"),
                                           QStringLiteral("trafficChanged()"), QStringLiteral("reconnectRequested()"),
                                           QStringLiteral("setCom1FrequencyRequested(QString)"),
                                           QStringLiteral("setCom2FrequencyRequested(QString)"),
                                           QStringLiteral("setTransponderCodeRequested(QString)"),
                                           QStringLiteral("transponderIdentRequested()"),
                                           QStringLiteral("transponderModeToggleRequested()")}));
    }

    void requestsAreSignals()
    {
        SimulatorPageViewModel model;
        QSignalSpy reconnect(&model, &SimulatorPageViewModel::reconnectRequested);
        QSignalSpy com1(&model, &SimulatorPageViewModel::setCom1FrequencyRequested);
        QSignalSpy com2(&model, &SimulatorPageViewModel::setCom2FrequencyRequested);
        QSignalSpy code(&model, &SimulatorPageViewModel::setTransponderCodeRequested);
        QSignalSpy ident(&model, &SimulatorPageViewModel::transponderIdentRequested);
        QSignalSpy mode(&model, &SimulatorPageViewModel::transponderModeToggleRequested);
        model.requestReconnect();
        model.requestSetCom1Frequency(QStringLiteral("121.800"));
        model.requestSetCom2Frequency(QStringLiteral("124.550"));
        model.requestSetTransponderCode(QStringLiteral("7700"));
        model.requestTransponderIdent();
        model.requestTransponderModeToggle();
        QCOMPARE(reconnect.count(), 1);
        QCOMPARE(com1, (QList<QVariantList>{{QStringLiteral("121.800")}}));
        QCOMPARE(com2, (QList<QVariantList>{{QStringLiteral("124.550")}}));
        QCOMPARE(code, (QList<QVariantList>{{QStringLiteral("7700")}}));
        QCOMPARE(ident.count(), 1);
        QCOMPARE(mode.count(), 1);
    }

    void modes_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("current");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("msfs");
        QTest::addColumn<bool>("xplane");
        const QString none = QStringLiteral("NONE");
        const QString nothing = QStringLiteral("未选择");
        QTest::newRow("X-Plane") << QStringLiteral("XPLANE") << QStringLiteral("XPLANE") << QStringLiteral("X-Plane")
                                 << false << true;
        QTest::newRow("MSFS") << QStringLiteral("MSFS") << QStringLiteral("MSFS")
                              << QStringLiteral("Microsoft Flight Simulator") << true << false;
        QTest::newRow("none") << none << none << nothing << false << false;
        QTest::newRow("empty") << QString() << none << nothing << false << false;
        QTest::newRow("lower case") << QStringLiteral("xplane") << none << nothing << false << false;
    }

    void modes()
    {
        QFETCH(QString, mode);
        SimulatorPageViewModel model;
        model.setMode(mode == QLatin1String("MSFS") ? QStringLiteral("XPLANE") : QStringLiteral("MSFS"));
        QSignalSpy told(&model, &SimulatorPageViewModel::stateChanged);
        for (int i = 0; i < 2; ++i)
            model.setMode(mode);
        QCOMPARE(told.count(), 1);
        QTEST(model.currentMode(), "current");
        QTEST(model.simulatorFamily(), "name");
        QTEST(model.simulatorDisplayName(), "name");
        QTEST(model.msfsMode(), "msfs");
        QTEST(model.xplaneMode(), "xplane");
    }

    void statesTellOnce_data()
    {
        QTest::addColumn<std::function<void(SimulatorPageViewModel &)>>("set");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QVariant>("value");
        using Model = SimulatorPageViewModel;
        const auto row = [](const char *name, const std::function<void(Model &)> &set, const char *property,
                            const QVariant &value) { QTest::newRow(name) << set << QByteArray(property) << value; };
        row(
            "connected", [](Model &m) { m.setSimulatorState(true, QStringLiteral("未连接")); }, "simulatorConnected",
            true);
        row(
            "status", [](Model &m) { m.setSimulatorState(false, QStringLiteral("连接中...")); }, "simulatorStatusText",
            QStringLiteral("连接中..."));
        row(
            "plugin good", [](Model &m) { m.setPluginValid(true); }, "pluginStatusText", QStringLiteral("有效"));
        row(
            "plugin bad", [](Model &m) { m.setPluginValid(false); }, "pluginStatusText", QStringLiteral("无效"));
        row(
            "CSL good", [](Model &m) { m.setCslValid(true); }, "cslStatusText", QStringLiteral("有效"));
        row(
            "CSL bad", [](Model &m) { m.setCslValid(false); }, "cslStatusText", QStringLiteral("无效"));
        row(
            "mapping", [](Model &m) { m.setTrafficMappingStatus(QStringLiteral("就绪")); }, "trafficMappingStatusText",
            QStringLiteral("就绪"));
        row(
            "mapping on lines", [](Model &m) { m.setTrafficMappingStatus(QStringLiteral(" a\nb ")); },
            "trafficMappingStatusText", QStringLiteral("a b"));
        row(
            "long mapping", [](Model &m) { m.setTrafficMappingStatus(QString(100'000, u'x')); },
            "trafficMappingStatusText", QString(200, u'x'));
        row(
            "version", [](Model &m) { m.setXPlaneVersion(120105); }, "xplaneVersionText",
            QStringLiteral("X-Plane 120105"));
    }

    void statesTellOnce()
    {
        QFETCH(std::function<void(SimulatorPageViewModel &)>, set);
        QFETCH(QByteArray, property);
        QFETCH(QVariant, value);
        SimulatorPageViewModel model;
        const QVariant start = model.property(property.constData());
        QSignalSpy told(&model, &SimulatorPageViewModel::stateChanged);
        set(model);
        set(model);
        QCOMPARE(told.count(), 1);
        QCOMPARE(model.property(property.constData()), value);
        model.clearPlugin();
        model.setSimulatorState(false, QStringLiteral("未连接"));
        QCOMPARE(told.count(), 2);
        model.clearPlugin();
        QCOMPARE(told.count(), 2);
        QCOMPARE(model.property(property.constData()), start);
    }

    void unknownPluginWordsAreTheStartTexts()
    {
        SimulatorPageViewModel model;
        QSignalSpy told(&model, &SimulatorPageViewModel::stateChanged);
        model.setTrafficMappingStatus(QStringLiteral(" \n"));
        model.setXPlaneVersion(0);
        model.setXPlaneVersion(-1);
        QCOMPARE(told.count(), 0);
    }

    void anotherModeForgetsTheOldSimulator()
    {
        SimulatorPageViewModel model;
        model.setMode(QStringLiteral("XPLANE"));
        model.setPluginValid(true);
        model.setRemoteAircraft({remote("CES1", 31.1, 121)});
        feed(model, overShanghai());
        QSignalSpy data(&model, &SimulatorPageViewModel::dataChanged);
        QSignalSpy traffic(&model, &SimulatorPageViewModel::trafficChanged);
        model.setMode(QStringLiteral("XPLANE"));
        QCOMPARE(model.plotContacts().size(), 1);
        model.setMode(QStringLiteral("NONE"));
        QCOMPARE(model.pluginStatusText(), QStringLiteral("未知"));
        QCOMPARE(model.motionSummary(), QStringLiteral("暂无运动数据"));
        QCOMPARE(model.latitude(), 0.0);
        QCOMPARE(model.plotContacts(), QVariantList());
        QCOMPARE(model.trafficSummary(), QStringLiteral("附近暂无交通目标"));
        QCOMPARE(data.count(), 1);
        QVERIFY(traffic.count() > 0);
    }

    void aLostLinkTakesTheDataBackToTheStart()
    {
        SimulatorPageViewModel model;
        model.setSimulatorState(true, QStringLiteral("已连接"));
        Own own = overShanghai();
        own.config.engineCount = 2;
        own.radio.transponderCode = 7700;
        own.paused = true;
        feed(model, own);
        model.setRemoteAircraft({remote("CES1", 31.1, 121)});
        QSignalSpy data(&model, &SimulatorPageViewModel::dataChanged);
        model.setSimulatorState(false, QStringLiteral("未连接"));
        QCOMPARE(data.count(), 1);
        QCOMPARE(model.motionSummary(), QStringLiteral("暂无运动数据"));
        QCOMPARE(model.transponderCode(), QStringLiteral("0000"));
        QCOMPARE(model.engineStates(), QVariantList());
        QVERIFY(!model.simPaused());
        QCOMPARE(model.plotContacts(), QVariantList()); // nothing to see it from
        feed(model, own);
        QCOMPARE(model.transponderCode(), QStringLiteral("7700"));
        QCOMPARE(model.plotContacts().size(), 1);
    }

    void texts_data()
    {
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const Edit &edit, const char *property, const char16_t *text) {
            QTest::newRow(name) << edit << QByteArray(property) << QString::fromUtf16(text);
        };
        row(
            "frequency", [](Own &o) { o.radio.com1Frequency = 121800; }, "com1Frequency", u"121.800");
        row(
            "8.33 channel", [](Own &o) { o.radio.com2Frequency = 118005; }, "com2Frequency", u"118.005");
        row(
            "absurd frequency", [](Own &o) { o.radio.com1Frequency = 4294967295U; }, "com1Frequency", u"4294967.295");
        row(
            "code", [](Own &o) { o.radio.transponderCode = 7700; }, "transponderCode", u"7700");
        row(
            "short code", [](Own &o) { o.radio.transponderCode = 21; }, "transponderCode", u"0021");

        row(
            "flaps", [](Own &o) { o.config.flapsRatio = 0.126; }, "flapsLabel", u"13%");
        row(
            "full flaps", [](Own &o) { o.config.flapsRatio = 1; }, "flapsLabel", u"100%");
        row(
            "flaps a hair below", [](Own &o) { o.config.flapsRatio = -0.001; }, "flapsLabel", u"0%");
        row(
            "flaps not a number", [](Own &o) { o.config.flapsRatio = notANumber; }, "flapsLabel", u"0%");
        row(
            "flaps infinite", [](Own &o) { o.config.flapsRatio = infinite; }, "flapsLabel", u"0%");
        row(
            "flaps absurd", [](Own &o) { o.config.flapsRatio = 1e300; }, "flapsLabel", u"--%");
        row(
            "speedbrake", [](Own &o) { o.config.speedbrakeRatio = 0.5; }, "speedbrakeLabel", u"50%");
        row(
            "speedbrake armed", [](Own &o) { o.config.speedbrakeArmed = true; }, "speedbrakeLabel", u"预位");
        row(
            "armed and deployed",
            [](Own &o) {
                o.config.speedbrakeArmed = true;
                o.config.speedbrakeRatio = 0.5;
            },
            "speedbrakeLabel", u"50%");
        row(
            "armed, not a number",
            [](Own &o) {
                o.config.speedbrakeArmed = true;
                o.config.speedbrakeRatio = notANumber;
            },
            "speedbrakeLabel", u"预位");

        row(
            "transmits on COM1",
            [](Own &o) {
                o.radio.com1TransmitEnabled = true;
                o.radio.com1Frequency = 121800;
            },
            "activeTransmitLabel", u"COM1 121.800");
        row(
            "transmits on COM2",
            [](Own &o) {
                o.radio.com2TransmitEnabled = true;
                o.radio.com2Frequency = 124550;
            },
            "activeTransmitLabel", u"COM2 124.550");
        row(
            "transmits on both shows COM1",
            [](Own &o) { o.radio.com1TransmitEnabled = o.radio.com2TransmitEnabled = true; }, "activeTransmitLabel",
            u"COM1 0.000");
        row(
            "transmits on none", [](Own &o) { o.radio.com1ReceiveEnabled = true; }, "activeTransmitLabel", u"无");
        row(
            "receives on COM2",
            [](Own &o) {
                o.radio.com2ReceiveEnabled = true;
                o.radio.com2Frequency = 124550;
            },
            "activeReceiveLabel", u"COM2 124.550");
        row(
            "receives on both",
            [](Own &o) {
                o.radio.com1ReceiveEnabled = o.radio.com2ReceiveEnabled = true;
                o.radio.com1Frequency = 121800;
                o.radio.com2Frequency = 124550;
            },
            "activeReceiveLabel", u"COM1 121.800 / COM2 124.550");
        row(
            "receives on none", [](Own &o) { o.radio.com1TransmitEnabled = true; }, "activeReceiveLabel", u"无");

        row(
            "standing still", [](Own &) {}, "motionSummary", u"地速 0 节 | 垂直速度 0.0 m/s | 前轮角 0.0°");
        row(
            "moving",
            [](Own &o) {
                o.aircraft.groundSpeed = 267.6;
                o.aircraft.altitudeVelocity = -7.26;
                o.aircraft.noseWheelAngle = 3.04;
            },
            "motionSummary", u"地速 268 节 | 垂直速度 -7.3 m/s | 前轮角 3.0°");
        row(
            "no minus before zero",
            [](Own &o) {
                o.aircraft.groundSpeed = -0.4;
                o.aircraft.altitudeVelocity = -0.04;
                o.aircraft.noseWheelAngle = -0.0;
            },
            "motionSummary", u"地速 0 节 | 垂直速度 0.0 m/s | 前轮角 0.0°");
        row(
            "not numbers",
            [](Own &o) {
                o.aircraft.groundSpeed = notANumber;
                o.aircraft.altitudeVelocity = infinite;
                o.aircraft.noseWheelAngle = -infinite;
            },
            "motionSummary", u"地速 -- 节 | 垂直速度 -- m/s | 前轮角 --°");

        row(
            "no engine", [](Own &o) { o.config.engine1Running = true; }, "engineSummary", u"未检测到发动机");
        row(
            "fewer than none", [](Own &o) { o.config.engineCount = -1; }, "engineSummary", u"未检测到发动机");
        row(
            "two engines, one runs",
            [](Own &o) {
                o.config.engineCount = 2;
                o.config.engine2Running = true;
            },
            "engineSummary", u"2 台发动机 | 1 台运行中 | 0 台反推");
        row(
            "engines beyond the count are not counted",
            [](Own &o) {
                o.config.engineCount = 1;
                o.config.engine1Running = o.config.engine2Running = true;
                o.config.engine3Reversing = true;
            },
            "engineSummary", u"1 台发动机 | 1 台运行中 | 0 台反推");
        row(
            "four reverse",
            [](Own &o) {
                o.config.engineCount = 4;
                o.config.engine1Reversing = o.config.engine2Reversing = true;
                o.config.engine3Reversing = o.config.engine4Reversing = true;
            },
            "engineSummary", u"4 台发动机 | 0 台运行中 | 4 台反推");
        row(
            "more engines than are known", [](Own &o) { o.config.engineCount = 2147483647; }, "engineSummary",
            u"2147483647 台发动机 | 0 台运行中 | 0 台反推");
    }

    void texts()
    {
        QFETCH(Edit, edit);
        QFETCH(QByteArray, property);
        SimulatorPageViewModel model;
        Own own;
        edit(own);
        feed(model, own);
        QTEST(model.property(property.constData()).toString(), "text");
    }

    void engineStates()
    {
        SimulatorPageViewModel model;
        Own own;
        own.config.engineCount = 2;
        own.config.engine1Running = true;
        own.config.engine2Reversing = true;
        feed(model, own);
        const auto engine = [](int index, bool running, bool reversing, const QString &label) {
            return QVariantMap{{QStringLiteral("index"), index},
                               {QStringLiteral("running"), running},
                               {QStringLiteral("reversing"), reversing},
                               {QStringLiteral("label"), label}};
        };
        QCOMPARE(model.engineStates(), (QVariantList{engine(0, true, false, QStringLiteral("ENG1")),
                                                     engine(1, false, true, QStringLiteral("ENG2"))}));
        own.config.engineCount = 8;
        feed(model, own);
        QCOMPARE(model.engineStates().size(), 4);
        own.config.engineCount = 0;
        feed(model, own);
        QCOMPARE(model.engineStates(), QVariantList());
    }

    void everyFieldTellsOnceAndIsPassedOn_data()
    {
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<QVariant>("value");
        const auto row = [](const char *property, const Edit &edit, const QVariant &value) {
            QTest::newRow(property) << edit << value;
        };
        row(
            "simPaused", [](Own &o) { o.paused = true; }, true);
        row(
            "latitude", [](Own &o) { o.aircraft.latitude = 1; }, 1.0);
        row(
            "longitude", [](Own &o) { o.aircraft.longitude = 2; }, 2.0);
        row(
            "altitudeMslM", [](Own &o) { o.aircraft.altitudeMslM = 3; }, 3.0);
        row(
            "altitudeAglM", [](Own &o) { o.aircraft.altitudeAglM = 4; }, 4.0);
        row(
            "altitudePressure", [](Own &o) { o.aircraft.altitudePressure = 5; }, 5.0);
        row(
            "heading", [](Own &o) { o.aircraft.heading = 6; }, 6.0);
        row(
            "groundSpeed", [](Own &o) { o.aircraft.groundSpeed = 7; }, 7.0);
        row(
            "pitch", [](Own &o) { o.aircraft.pitch = 8; }, 8.0);
        row(
            "bank", [](Own &o) { o.aircraft.bank = 9; }, 9.0);
        row(
            "latitudeVelocity", [](Own &o) { o.aircraft.latitudeVelocity = 10; }, 10.0);
        row(
            "longitudeVelocity", [](Own &o) { o.aircraft.longitudeVelocity = 11; }, 11.0);
        row(
            "altitudeVelocity", [](Own &o) { o.aircraft.altitudeVelocity = 12; }, 12.0);
        row(
            "pitchVelocity", [](Own &o) { o.aircraft.pitchVelocity = 13; }, 13.0);
        row(
            "headingVelocity", [](Own &o) { o.aircraft.headingVelocity = 14; }, 14.0);
        row(
            "bankVelocity", [](Own &o) { o.aircraft.bankVelocity = 15; }, 15.0);
        row(
            "noseWheelAngle", [](Own &o) { o.aircraft.noseWheelAngle = 16; }, 16.0);
        row(
            "onGround", [](Own &o) { o.config.onGround = true; }, true);
        row(
            "gearDown", [](Own &o) { o.config.gearDown = true; }, true);
        row(
            "beaconOn", [](Own &o) { o.config.beaconOn = true; }, true);
        row(
            "landingLightsOn", [](Own &o) { o.config.landingLightsOn = true; }, true);
        row(
            "taxiLightsOn", [](Own &o) { o.config.taxiLightsOn = true; }, true);
        row(
            "navLightsOn", [](Own &o) { o.config.navLightsOn = true; }, true);
        row(
            "strobesOn", [](Own &o) { o.config.strobesOn = true; }, true);
        row(
            "engineCount", [](Own &o) { o.config.engineCount = 4; }, 4);
        row(
            "flapsRatio", [](Own &o) { o.config.flapsRatio = 0.4; }, 0.4);
        row(
            "speedbrakeRatio", [](Own &o) { o.config.speedbrakeRatio = 0.6; }, 0.6);
        row(
            "speedbrakeArmed", [](Own &o) { o.config.speedbrakeArmed = true; }, true);
        row(
            "avionicsPowerOn", [](Own &o) { o.radio.avionicsPowerOn = true; }, true);
        row(
            "com1ReceiveEnabled", [](Own &o) { o.radio.com1ReceiveEnabled = true; }, true);
        row(
            "com2ReceiveEnabled", [](Own &o) { o.radio.com2ReceiveEnabled = true; }, true);
        row(
            "com1TransmitEnabled", [](Own &o) { o.radio.com1TransmitEnabled = true; }, true);
        row(
            "com2TransmitEnabled", [](Own &o) { o.radio.com2TransmitEnabled = true; }, true);
        row(
            "com1Volume", [](Own &o) { o.radio.com1Volume = 80; }, 80);
        row(
            "com2Volume", [](Own &o) { o.radio.com2Volume = 90; }, 90);
        row(
            "squawkingModeC", [](Own &o) { o.radio.squawkingModeC = true; }, true);
        row(
            "squawkingIdent", [](Own &o) { o.radio.squawkingIdent = true; }, true);
    }

    void everyFieldTellsOnceAndIsPassedOn()
    {
        QFETCH(Edit, edit);
        SimulatorPageViewModel model;
        Own own;
        feed(model, own);
        QSignalSpy data(&model, &SimulatorPageViewModel::dataChanged);
        edit(own);
        feed(model, own);
        feed(model, own);
        QCOMPARE(data.count(), 1);
        QTEST(model.property(QTest::currentDataTag()), "value");
    }

    void theFirstSampleTellsEvenOfZeros()
    {
        SimulatorPageViewModel model;
        QSignalSpy data(&model, &SimulatorPageViewModel::dataChanged);
        feed(model, Own());
        feed(model, Own());
        QCOMPARE(data.count(), 1);
    }
};

TARVO_TEST(SimulatorPageViewModelTest)
#include "SimulatorPageViewModelTest.moc"
