#include "ui/viewmodel/SimulatorPageViewModel.h"

#include "SimulatorPageFixture.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using namespace tarvo::test;
using tarvo::ui::SimulatorPageViewModel;

/// The simulator page: what it starts with, its mode and link, its requests.
class SimulatorPageViewModelTest : public QObject
{
    Q_OBJECT

private slots:
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
        QVERIFY(model.plotContacts().isEmpty());
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
        QVERIFY(model.plotContacts().isEmpty()); // nothing to see it from
        feed(model, own);
        QCOMPARE(model.transponderCode(), QStringLiteral("7700"));
        QCOMPARE(model.plotContacts().size(), 1);
    }
};

TARVO_TEST(SimulatorPageViewModelTest)
#include "SimulatorPageViewModelTest.moc"
