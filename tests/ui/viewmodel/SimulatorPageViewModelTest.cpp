#include "ui/viewmodel/SimulatorPageViewModel.h"

#include "SimulatorPageFixture.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using namespace tarvo::test;
using tarvo::ui::LinkState;
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
        model.requestSetCom1Frequency(u"121.800"_qs);
        model.requestSetCom2Frequency(u"124.550"_qs);
        model.requestSetTransponderCode(u"7700"_qs);
        model.requestTransponderIdent();
        model.requestTransponderModeToggle();
        QCOMPARE(reconnect.count(), 1);
        QCOMPARE(com1, (QList<QVariantList>{{u"121.800"_qs}}));
        QCOMPARE(com2, (QList<QVariantList>{{u"124.550"_qs}}));
        QCOMPARE(code, (QList<QVariantList>{{u"7700"_qs}}));
        QCOMPARE(ident.count(), 1);
        QCOMPARE(mode.count(), 1);
    }

    void modes_data()
    {
        columns<QString, QString, QString, bool, bool>("mode", "current", "name", "msfs", "xplane");
        const QString none = u"NONE"_qs;
        const QString nothing = u"未选择"_qs;
        QTest::newRow("X-Plane") << u"XPLANE"_qs << u"XPLANE"_qs << u"X-Plane"_qs << false << true;
        QTest::newRow("MSFS") << u"MSFS"_qs << u"MSFS"_qs << u"Microsoft Flight Simulator"_qs << true << false;
        QTest::newRow("none") << none << none << nothing << false << false;
        QTest::newRow("empty") << QString() << none << nothing << false << false;
        QTest::newRow("lower case") << u"xplane"_qs << none << nothing << false << false;
    }

    void modes()
    {
        QFETCH(QString, mode);
        SimulatorPageViewModel model;
        model.setMode(mode == QLatin1String("MSFS") ? u"XPLANE"_qs : u"MSFS"_qs);
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
        columns<std::function<void(SimulatorPageViewModel &)>, QByteArray, QVariant>("set", "property", "value");
        using Model = SimulatorPageViewModel;
        const auto row = [](const char *name, const std::function<void(Model &)> &set, const char *property,
                            const QVariant &value) { QTest::newRow(name) << set << QByteArray(property) << value; };
        row(
            "connected", [](Model &m) { m.setSimulatorState(true, LinkState::Absent); }, "simulatorConnected", true);
        row(
            "status", [](Model &m) { m.setSimulatorState(false, LinkState::Connecting); }, "simulatorStatusText",
            u"连接中..."_qs);
        row(
            "plugin good", [](Model &m) { m.setPluginValid(true); }, "pluginStatusText", u"有效"_qs);
        row(
            "plugin bad", [](Model &m) { m.setPluginValid(false); }, "pluginStatusText", u"无效"_qs);
        row(
            "CSL good", [](Model &m) { m.setCslValid(true); }, "cslStatusText", u"有效"_qs);
        row(
            "CSL bad", [](Model &m) { m.setCslValid(false); }, "cslStatusText", u"无效"_qs);
        row(
            "mapping", [](Model &m) { m.setTrafficMappingStatus(u"就绪"_qs); }, "trafficMappingStatusText", u"就绪"_qs);
        row(
            "mapping on lines", [](Model &m) { m.setTrafficMappingStatus(u" a\nb "_qs); }, "trafficMappingStatusText",
            u"a b"_qs);
        row(
            "long mapping", [](Model &m) { m.setTrafficMappingStatus(QString(100'000, u'x')); },
            "trafficMappingStatusText", QString(200, u'x'));
        row(
            "version", [](Model &m) { m.setXPlaneVersion(120105); }, "xplaneVersionText", u"X-Plane 120105"_qs);
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
        model.setSimulatorState(false, LinkState::Absent);
        QCOMPARE(told.count(), 2);
        model.clearPlugin();
        QCOMPARE(told.count(), 2);
        QCOMPARE(model.property(property.constData()), start);
    }

    void onlyAPluginThatFitsTakesTheReasonAway()
    {
        SimulatorPageViewModel model;
        model.setFailure(QString(300, u'x'));
        model.setPluginValid(false);
        QCOMPARE(model.simulatorFailureText(), QString(200, u'x'));
        model.setPluginValid(true);
        QCOMPARE(model.simulatorFailureText(), QString());
    }

    void unknownPluginWordsAreTheStartTexts()
    {
        SimulatorPageViewModel model;
        QSignalSpy told(&model, &SimulatorPageViewModel::stateChanged);
        model.setTrafficMappingStatus(u" \n"_qs);
        model.setXPlaneVersion(0);
        model.setXPlaneVersion(-1);
        QCOMPARE(told.count(), 0);
    }

    void anotherModeForgetsTheOldSimulator()
    {
        SimulatorPageViewModel model;
        model.setMode(u"XPLANE"_qs);
        model.setPluginValid(true);
        model.setRemoteAircraft({remote("CES1", 31.1, 121)});
        feed(model, overShanghai());
        QSignalSpy data(&model, &SimulatorPageViewModel::dataChanged);
        QSignalSpy traffic(&model, &SimulatorPageViewModel::trafficChanged);
        model.setMode(u"XPLANE"_qs);
        QCOMPARE(model.plotContacts().size(), 1);
        model.setMode(u"NONE"_qs);
        QCOMPARE(model.pluginStatusText(), u"未知"_qs);
        QCOMPARE(model.motionSummary(), u"暂无运动数据"_qs);
        QCOMPARE(model.latitude(), 0.0);
        QVERIFY(model.plotContacts().isEmpty());
        QCOMPARE(model.trafficSummary(), u"附近暂无交通目标"_qs);
        QCOMPARE(data.count(), 1);
        QVERIFY(traffic.count() > 0);
    }

    void aLostLinkTakesTheDataBackToTheStart()
    {
        SimulatorPageViewModel model;
        model.setSimulatorState(true, LinkState::Connected);
        Own own = overShanghai();
        own.config.engineCount = 2;
        own.radio.transponderCode = 7700;
        own.paused = true;
        feed(model, own);
        model.setRemoteAircraft({remote("CES1", 31.1, 121)});
        QSignalSpy data(&model, &SimulatorPageViewModel::dataChanged);
        model.setSimulatorState(false, LinkState::Absent);
        QCOMPARE(data.count(), 1);
        QCOMPARE(model.motionSummary(), u"暂无运动数据"_qs);
        QCOMPARE(model.transponderCode(), u"0000"_qs);
        QCOMPARE(model.engineStates(), QVariantList());
        QVERIFY(!model.simPaused());
        QVERIFY(model.plotContacts().isEmpty()); // nothing to see it from
        feed(model, own);
        QCOMPARE(model.transponderCode(), u"7700"_qs);
        QCOMPARE(model.plotContacts().size(), 1);
    }
};

TARVO_TEST(SimulatorPageViewModelTest)
#include "SimulatorPageViewModelTest.moc"
