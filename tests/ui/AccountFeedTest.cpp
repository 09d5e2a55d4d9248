#include "ui/AccountFeed.h"

#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "ui/AccountStage.h"
#include "ui/viewmodel/DashboardViewModel.h"

#include <QJsonArray>

using namespace tarvo;
using ui::LinkState;

namespace {

struct DashboardStage : test::AccountStage
{
    ui::DashboardViewModel dashboard;
    ui::AccountFeed feed{api, dashboard};

    void answer(const QByteArray &line, const QString &code, const QJsonValue &data)
    {
        peer.answer(line, {{u"code"_qs, code}, {u"data"_qs, data}});
    }
};

QJsonObject flight(const QString &callsign, const QString &start, const QString &end, int seconds)
{
    return {{u"callsign"_qs, callsign}, {u"start_time"_qs, start}, {u"end_time"_qs, end}, {u"online_time"_qs, seconds}};
}

} // namespace

class AccountFeedTest : public QObject
{
    Q_OBJECT

private slots:
    void setsTheDefaults()
    {
        DashboardStage stage;
        stage.signIn();
        stage.dashboard.setServerState(true, LinkState::Connected);
        stage.feed.applyUserInfoDefaults();
        QCOMPARE(stage.dashboard.username(), u"未知用户"_qs);
        QCOMPARE(stage.dashboard.cid(), u"7"_qs);
        QCOMPARE(stage.dashboard.rating(), u"加载中..."_qs);
        QCOMPARE(stage.dashboard.pilotTime(), u"加载中..."_qs);
        QCOMPARE(stage.dashboard.atcTime(), u"加载中..."_qs);
        QCOMPARE(stage.dashboard.simulatorStatusText(), u"未连接"_qs);
        QCOMPARE(stage.dashboard.serverStatusText(), u"未连接"_qs);
        QVERIFY(!stage.dashboard.serverConnected());
    }

    void showsTheUser()
    {
        DashboardStage stage;
        stage.signIn();
        stage.answer("GET /api/users/profiles/self", u"GET_USER_PROFILE"_qs,
                     QJsonObject{{u"rating"_qs, 3}, {u"total_pilot_time"_qs, 3660}, {u"total_atc_time"_qs, 0}});
        stage.feed.loadUserInfo();
        TRY_COMPARE(stage.dashboard.username(), u"王小明"_qs);
        QCOMPARE(stage.dashboard.cid(), u"CID: 1001"_qs);
        QCOMPARE(stage.dashboard.rating(), u"3"_qs);
        QCOMPARE(stage.dashboard.pilotTime(), u"1小时 01分"_qs);
        QCOMPARE(stage.dashboard.atcTime(), u"0小时 0分"_qs);
    }

    void showsTheFlightsNewestFirst()
    {
        DashboardStage stage;
        stage.signIn();
        stage.answer(
            "GET /api/users/histories/self", u"GET_USER_HISTORY"_qs,
            QJsonObject{{u"pilots"_qs,
                         QJsonArray{flight(u"CES1"_qs, u"2026-03-01T08:00:00"_qs, u"2026-03-01T09:30:00"_qs, 5400),
                                    flight(u"CES2"_qs, u"2026-03-02T10:00:00"_qs, u"2026-03-02T11:00:00"_qs, 3600),
                                    flight(u"CES3"_qs, u""_qs, u""_qs, 0)}}});
        stage.feed.loadUserHistory();
        TRY_COMPARE(stage.dashboard.recentFlights().size(), 3);
        const QVariantMap first = stage.dashboard.recentFlights()[0].toMap();
        QCOMPARE(first[u"callsign"_qs].toString(), u"CES2"_qs);
        QCOMPARE(first[u"time"_qs].toString(), u"03-02 10:00 - 11:00"_qs);
        QCOMPARE(first[u"duration"_qs].toString(), u"1小时 00分"_qs);
        const QVariantMap last = stage.dashboard.recentFlights()[2].toMap();
        QCOMPARE(last[u"time"_qs].toString(), u"时间未知"_qs);
    }

    void whatThePageCannotHoldIsCut()
    {
        DashboardStage stage;
        stage.signIn();
        const QString endless(1'000'000, u'X');
        stage.answer("GET /api/users/histories/self", u"GET_USER_HISTORY"_qs,
                     QJsonObject{{u"pilots"_qs, QJsonArray{flight(endless, u""_qs, u""_qs, 0)}}});
        stage.answer("GET /api/server/rating", u"GET_TIME_RATING"_qs,
                     QJsonObject{{u"pilots"_qs, QJsonArray{QJsonObject{{u"cid"_qs, 1}, {u"username"_qs, endless}}}}});
        stage.feed.loadUserHistory();
        stage.feed.loadLeaderboard();
        TRY_COMPARE(stage.dashboard.recentFlights().size(), 1);
        TRY_COMPARE(stage.dashboard.pilotLeaderboard().size(), 1);
        QCOMPARE(stage.dashboard.recentFlights()[0].toMap()[u"callsign"_qs].toString(), QString(32, u'X'));
        QCOMPARE(stage.dashboard.pilotLeaderboard()[0].toMap()[u"name"_qs].toString(), QString(64, u'X'));
        stage.dashboard.setUserInfo(endless, endless, endless);
        QCOMPARE(stage.dashboard.username().size(), 64);
        QCOMPARE(stage.dashboard.cid().size(), 64);
        QCOMPARE(stage.dashboard.rating().size(), 64);
    }

    void theNewestFlightsAreEnough()
    {
        DashboardStage stage;
        stage.signIn();
        QJsonArray flights;
        for (int i = 0; i < 300; ++i)
            flights.append(flight(
                u"CES%1"_qs.arg(i),
                u"2026-03-01T08:%1:%2"_qs.arg(i / 60, 2, 10, QLatin1Char('0')).arg(i % 60, 2, 10, QLatin1Char('0')),
                u"2026-03-01T09:30:00"_qs, 60));
        stage.answer("GET /api/users/histories/self", u"GET_USER_HISTORY"_qs, QJsonObject{{u"pilots"_qs, flights}});
        stage.feed.loadUserHistory();
        TRY_COMPARE(stage.dashboard.recentFlights().size(), 200);
        QCOMPARE(stage.dashboard.recentFlights().constFirst().toMap()[u"callsign"_qs].toString(), u"CES299"_qs);
    }

    void showsTheTenBest()
    {
        DashboardStage stage;
        stage.signIn();
        QJsonArray pilots;
        for (int place = 1; place <= 12; ++place)
            pilots.append(
                QJsonObject{{u"cid"_qs, 1000 + place}, {u"username"_qs, u"P%1"_qs.arg(place)}, {u"time"_qs, 3600}});
        stage.answer("GET /api/server/rating", u"GET_TIME_RATING"_qs,
                     QJsonObject{{u"pilots"_qs, pilots}, {u"controllers"_qs, QJsonArray{pilots[0]}}});
        stage.feed.loadLeaderboard();
        TRY_COMPARE(stage.dashboard.pilotLeaderboard().size(), 10);
        QCOMPARE(stage.dashboard.atcLeaderboard().size(), 1);
        const QVariantMap second = stage.dashboard.pilotLeaderboard()[1].toMap();
        QCOMPARE(second[u"rank"_qs].toInt(), 2);
        QCOMPARE(second[u"name"_qs].toString(), u"P2"_qs);
        QCOMPARE(second[u"cid"_qs].toString(), u"1002"_qs);
        QCOMPARE(second[u"time"_qs].toString(), u"1小时 00分"_qs);
    }

    void aFailureKeepsWhatStands()
    {
        DashboardStage stage; // not signed in: every call fails at once
        stage.feed.applyUserInfoDefaults();
        stage.feed.loadUserInfo();
        stage.feed.loadUserHistory();
        stage.feed.loadLeaderboard();
        QCoreApplication::processEvents();
        QCOMPARE(stage.dashboard.username(), u"未知用户"_qs);
        QVERIFY(stage.dashboard.recentFlights().isEmpty() && stage.dashboard.pilotLeaderboard().isEmpty());
    }

    void aReplyAfterItsEndDoesNothing()
    {
        DashboardStage stage;
        stage.signIn();
        stage.answer("GET /api/users/profiles/self", u"GET_USER_PROFILE"_qs, QJsonObject{{u"rating"_qs, 3}});
        {
            ui::AccountFeed gone(stage.api, stage.dashboard);
            gone.loadUserInfo();
        }
        bool answered = false;
        stage.api.getUserProfile([&answered](bool, const model::UserProfile &, const QString &) { answered = true; });
        TRY_VERIFY(answered);
        TRY_COMPARE(stage.peer.count("GET /api/users/profiles/self"), 2);
        QCOMPARE(stage.dashboard.username(), u"游客"_qs);
    }
};

TARVO_TEST(AccountFeedTest)
#include "AccountFeedTest.moc"
