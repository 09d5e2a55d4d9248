#include "ui/viewmodel/DashboardViewModel.h"

#include "support/ManualClock.h"
#include "support/TestRegistry.h"

#include <QDateTime>
#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using tarvo::ui::DashboardViewModel;
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
            model.setUserInfo(QString(100'000, u'x'), QStringLiteral("1"), QStringLiteral("2"));
        QCOMPARE(model.username(), QString(64, u'x'));
        QCOMPARE(told.count(), 1);
    }

    void aSetterStoresAndTellsOnce_data()
    {
        QTest::addColumn<Action>("set");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<QVariantMap>("stored");
        const auto row = [](const char *name, const char *signal, const Action &set, const QVariantMap &stored) {
            QTest::newRow(name) << set << QByteArray(signal) << stored;
        };
        const QString text = QStringLiteral("甲");
        row("user, all three", "userInfoChanged",
            [=](auto &m) { m.setUserInfo(text, QStringLiteral("CID: 1"), QStringLiteral("S2")); },
            {{QStringLiteral("username"), text},
             {QStringLiteral("cid"), QStringLiteral("CID: 1")},
             {QStringLiteral("rating"), QStringLiteral("S2")}});
        row("name only", "userInfoChanged",
            [=](auto &m) { m.setUserInfo(text, QStringLiteral("--"), QStringLiteral("--")); },
            {{QStringLiteral("username"), text}});
        row("number only", "userInfoChanged",
            [=](auto &m) { m.setUserInfo(QStringLiteral("游客"), text, QStringLiteral("--")); },
            {{QStringLiteral("cid"), text}});
        row("rating only", "userInfoChanged",
            [=](auto &m) { m.setUserInfo(QStringLiteral("游客"), QStringLiteral("--"), text); },
            {{QStringLiteral("rating"), text}});
        row("pilot time", "userInfoChanged", [=](auto &m) { m.setTimes(text, QStringLiteral("0小时 0分")); },
            {{QStringLiteral("pilotTime"), text}, {QStringLiteral("atcTime"), QStringLiteral("0小时 0分")}});
        row("controller time", "userInfoChanged", [=](auto &m) { m.setTimes(QStringLiteral("0小时 0分"), text); },
            {{QStringLiteral("atcTime"), text}});
        row("avatar", "userInfoChanged", [=](auto &m) { m.setAvatarUrl(text); }, {{QStringLiteral("avatarUrl"), text}});
        row("mode", "currentModeChanged", [](auto &m) { m.setCurrentMode(QStringLiteral("XPLANE")); },
            {{QStringLiteral("currentMode"), QStringLiteral("XPLANE")}});
        row("simulator flag", "simulatorStateChanged",
            [](auto &m) { m.setSimulatorState(true, QStringLiteral("未连接")); },
            {{QStringLiteral("simulatorConnected"), true}});
        row("simulator text", "simulatorStateChanged", [=](auto &m) { m.setSimulatorState(false, text); },
            {{QStringLiteral("simulatorStatusText"), text}});
        row("server flag", "serverStateChanged", [](auto &m) { m.setServerState(true, QStringLiteral("未连接")); },
            {{QStringLiteral("serverConnected"), true}});
        row("server text", "serverStateChanged", [=](auto &m) { m.setServerState(false, text); },
            {{QStringLiteral("serverStatusText"), text}});
        row("latitude", "flightDataChanged", [](auto &m) { m.setFlightData(1, 0, 0, 0, 0); },
            {{QStringLiteral("latitude"), 1.0}});
        row("longitude", "flightDataChanged", [](auto &m) { m.setFlightData(0, 2, 0, 0, 0); },
            {{QStringLiteral("longitude"), 2.0}});
        row("altitude", "flightDataChanged", [](auto &m) { m.setFlightData(0, 0, 3, 0, 0); },
            {{QStringLiteral("altitude"), 3.0}});
        row("heading", "flightDataChanged", [](auto &m) { m.setFlightData(0, 0, 0, 4, 0); },
            {{QStringLiteral("heading"), 4.0}});
        row("ground speed", "flightDataChanged", [](auto &m) { m.setFlightData(0, 0, 0, 0, 5); },
            {{QStringLiteral("groundSpeed"), 5.0}});
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
        model.appendServerLog(QStringLiteral("一"));
        clock.advance(61'000);
        model.appendServerLog(QStringLiteral("二"));
        QCOMPARE(model.serverLog(), QStringLiteral("[03:04:05] 一\n[03:05:06] 二"));
        QCOMPARE(spy.count(), 2);
    }

    void requestsOnlyEmit()
    {
        DashboardViewModel model;
        QSignalSpy mode(&model, &DashboardViewModel::modeChangedRequest);
        QSignalSpy connects(&model, &DashboardViewModel::serverConnectRequest);
        QSignalSpy disconnects(&model, &DashboardViewModel::serverDisconnectRequest);
        QSignalSpy reconnects(&model, &DashboardViewModel::simulatorReconnectRequest);
        model.requestModeChange(QStringLiteral("XPLANE"));
        model.requestServerConnect(QStringLiteral("CCA1"), QStringLiteral("B738"), QStringLiteral("AB-CD"), true);
        model.requestServerDisconnect();
        model.requestSimulatorReconnect();
        QCOMPARE(mode, (QList<QVariantList>{{QStringLiteral("XPLANE")}}));
        QCOMPARE(connects, (QList<QVariantList>{
                               {QStringLiteral("CCA1"), QStringLiteral("B738"), QStringLiteral("AB-CD"), true}}));
        QCOMPARE(disconnects.count(), 1);
        QCOMPARE(reconnects.count(), 1);
        QCOMPARE(model.currentMode(), QStringLiteral("NONE"));
    }
};

TARVO_TEST(DashboardViewModelTest)
#include "DashboardViewModelTest.moc"
