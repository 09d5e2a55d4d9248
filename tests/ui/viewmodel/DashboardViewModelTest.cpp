#include "ui/viewmodel/DashboardViewModel.h"

#include "support/Columns.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"

#include <QDateTime>
#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using tarvo::test::columns;
using tarvo::ui::DashboardViewModel;
using tarvo::ui::LinkState;
using tarvo::ui::RankedUser;

namespace {

using Action = std::function<void(DashboardViewModel &)>;

QVariantMap ranked(const QString &name)
{
    return {{u"rank"_qs, 1}, {u"name"_qs, name}, {u"cid"_qs, u"1001"_qs}, {u"time"_qs, u"2小时"_qs}};
}

} // namespace

Q_DECLARE_METATYPE(Action)

class DashboardViewModelTest : public QObject
{
    Q_OBJECT

private slots:
    void aLongUserNameIsCut()
    {
        DashboardViewModel model;
        QSignalSpy told(&model, &DashboardViewModel::userInfoChanged);
        for (int i = 0; i < 2; ++i)
            model.setUserInfo(QString(100'000, u'x'), u"1"_qs, u"2"_qs);
        QCOMPARE(model.username(), QString(64, u'x'));
        QCOMPARE(told.count(), 1);
    }

    void aSetterStoresAndTellsOnce_data()
    {
        columns<Action, QByteArray, QVariantMap>("set", "signal", "stored");
        const auto row = [](const char *name, const char *signal, const Action &set, const QVariantMap &stored) {
            QTest::newRow(name) << set << QByteArray(signal) << stored;
        };
        const QString text = u"甲"_qs;
        row("user, all three", "userInfoChanged", [=](auto &m) { m.setUserInfo(text, u"CID: 1"_qs, u"S2"_qs); },
            {{u"username"_qs, text}, {u"cid"_qs, u"CID: 1"_qs}, {u"rating"_qs, u"S2"_qs}});
        row("name only", "userInfoChanged", [=](auto &m) { m.setUserInfo(text, u"--"_qs, u"--"_qs); },
            {{u"username"_qs, text}});
        row("number only", "userInfoChanged", [=](auto &m) { m.setUserInfo(u"游客"_qs, text, u"--"_qs); },
            {{u"cid"_qs, text}});
        row("rating only", "userInfoChanged", [=](auto &m) { m.setUserInfo(u"游客"_qs, u"--"_qs, text); },
            {{u"rating"_qs, text}});
        row("pilot time", "userInfoChanged", [=](auto &m) { m.setTimes(text, u"0小时 0分"_qs); },
            {{u"pilotTime"_qs, text}, {u"atcTime"_qs, u"0小时 0分"_qs}});
        row("controller time", "userInfoChanged", [=](auto &m) { m.setTimes(u"0小时 0分"_qs, text); },
            {{u"atcTime"_qs, text}});
        row("avatar", "userInfoChanged", [=](auto &m) { m.setAvatarUrl(text); }, {{u"avatarUrl"_qs, text}});
        row("mode", "currentModeChanged", [](auto &m) { m.setCurrentMode(u"XPLANE"_qs); },
            {{u"currentMode"_qs, u"XPLANE"_qs}});
        row("simulator flag", "simulatorStateChanged", [](auto &m) { m.setSimulatorState(true, LinkState::Absent); },
            {{u"simulatorConnected"_qs, true}});
        row("simulator text", "simulatorStateChanged", [](auto &m) { m.setSimulatorState(false, LinkState::Ended); },
            {{u"simulatorStatusText"_qs, u"已断开"_qs}});
        row("server flag", "serverStateChanged", [](auto &m) { m.setServerState(true, LinkState::Absent); },
            {{u"serverConnected"_qs, true}});
        row("server text", "serverStateChanged", [](auto &m) { m.setServerState(false, LinkState::Ended); },
            {{u"serverStatusText"_qs, u"已断开"_qs}});
        row("latitude", "flightDataChanged", [](auto &m) { m.setFlightData(1, 0, 0, 0, 0); }, {{u"latitude"_qs, 1.0}});
        row("longitude", "flightDataChanged", [](auto &m) { m.setFlightData(0, 2, 0, 0, 0); },
            {{u"longitude"_qs, 2.0}});
        row("altitude", "flightDataChanged", [](auto &m) { m.setFlightData(0, 0, 3, 0, 0); }, {{u"altitude"_qs, 3.0}});
        row("heading", "flightDataChanged", [](auto &m) { m.setFlightData(0, 0, 0, 4, 0); }, {{u"heading"_qs, 4.0}});
        row("ground speed", "flightDataChanged", [](auto &m) { m.setFlightData(0, 0, 0, 0, 5); },
            {{u"groundSpeed"_qs, 5.0}});
        row("flights", "recentFlightsChanged",
            [=](auto &m) {
                m.setRecentFlights({{text, u"03-01"_qs, u"1小时"_qs}});
            },
            {{u"recentFlights"_qs,
              QVariantList{
                  QVariantMap{{u"callsign"_qs, text}, {u"time"_qs, u"03-01"_qs}, {u"duration"_qs, u"1小时"_qs}}}}});
        const QList<RankedUser> best{{1, text, u"1001"_qs, u"2小时"_qs}};
        row("pilots", "leaderboardChanged", [=](auto &m) { m.setLeaderboard(best, {}); },
            {{u"pilotLeaderboard"_qs, QVariantList{ranked(text)}}});
        row("controllers", "leaderboardChanged", [=](auto &m) { m.setLeaderboard({}, best); },
            {{u"atcLeaderboard"_qs, QVariantList{ranked(text)}}});
    }

    void aSetterStoresAndTellsOnce()
    {
        QFETCH(Action, set);
        QFETCH(QByteArray, signal);
        QFETCH(QVariantMap, stored);
        DashboardViewModel model;
        const QMetaObject *type = model.metaObject();
        QSignalSpy spy(&model, type->method(type->indexOfSignal(signal + "()")));
        set(model);
        QCOMPARE(spy.count(), 1);
        for (auto it = stored.cbegin(); it != stored.cend(); ++it)
            QCOMPARE(model.property(it.key().toLatin1().constData()), it.value());
        set(model);
        QCOMPARE(spy.count(), 1);
    }

    void appendServerLogAddsALineWithTheLocalTime()
    {
        tarvo::test::ManualClock clock(QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5)).toMSecsSinceEpoch());
        DashboardViewModel model(nullptr, clock);
        QSignalSpy spy(&model, &DashboardViewModel::serverLogChanged);
        model.appendServerLog(u"一"_qs);
        clock.advance(61'000);
        model.appendServerLog(u"二"_qs);
        QCOMPARE(model.serverLog(), u"[03:04:05] 一\n[03:05:06] 二"_qs);
        QCOMPARE(spy.count(), 2);
    }

    void tellsWhyThereIsNoSimulator_data()
    {
        columns<QString, bool, QString, QString>("mode", "connected", "failure", "hint");
        QTest::newRow("no mode") << u"NONE"_qs << false << QString() << QString();
        QTest::newRow("X-Plane isn't there yet")
            << u"XPLANE"_qs << false << QString() << u"等待 X-Plane：请启动 X-Plane 并载入航班，客户端会自动连接。"_qs;
        QTest::newRow("MSFS isn't there yet")
            << u"MSFS"_qs << false << QString() << u"等待 Microsoft Flight Simulator：请启动模拟器并载入航班。"_qs;
        QTest::newRow("failed") << u"XPLANE"_qs << false << u"插件没有应答"_qs << u"插件没有应答"_qs;
        QTest::newRow("there, without its plugin") << u"XPLANE"_qs << true << u"插件没有应答"_qs << QString();
    }
    void tellsWhyThereIsNoSimulator()
    {
        QFETCH(QString, mode);
        QFETCH(bool, connected);
        QFETCH(QString, failure);
        DashboardViewModel model;
        const QSignalSpy changed(&model, &DashboardViewModel::simulatorHintChanged);
        model.setCurrentMode(mode);
        model.setSimulatorState(connected, LinkState::Absent);
        model.setSimulatorFailure(failure);
        QTEST(model.simulatorHintText(), "hint");
        const qsizetype told = changed.size();
        model.setSimulatorFailure(failure);
        QCOMPARE(changed.size(), told);
    }

    void requestsOnlyEmit()
    {
        DashboardViewModel model;
        QSignalSpy mode(&model, &DashboardViewModel::modeChangedRequest);
        QSignalSpy connects(&model, &DashboardViewModel::serverConnectRequest);
        QSignalSpy disconnects(&model, &DashboardViewModel::serverDisconnectRequest);
        QSignalSpy reconnects(&model, &DashboardViewModel::simulatorReconnectRequest);
        model.requestModeChange(u"XPLANE"_qs);
        model.requestServerConnect(u"CCA1"_qs, u"B738"_qs, u"AB-CD"_qs, true);
        model.requestServerDisconnect();
        model.requestSimulatorReconnect();
        QCOMPARE(mode, (QList<QVariantList>{{u"XPLANE"_qs}}));
        QCOMPARE(connects, (QList<QVariantList>{{u"CCA1"_qs, u"B738"_qs, u"AB-CD"_qs, true}}));
        QCOMPARE(disconnects.count(), 1);
        QCOMPARE(reconnects.count(), 1);
        QCOMPARE(model.currentMode(), u"NONE"_qs);
    }
};

TARVO_TEST(DashboardViewModelTest)
#include "DashboardViewModelTest.moc"
