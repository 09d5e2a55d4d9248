#include "network/ApiFixture.h"
#include "network/ReplyOutcome.h"
#include "support/Columns.h"
#include "support/LogCapture.h"
#include "support/MainThreadWatch.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

using namespace tarvo;
using namespace tarvo::test;

namespace {

enum class Record
{
    History,
    Profile,
    Leaderboard
};

/// What a record's callback was told; the record comes down to one number.
struct ToldRecord
{
    int calls = 0;
    bool success = false;
    qint64 number = -1;
    QString error;
};

void ask(network::ApiService &service, Record record, ToldRecord &told)
{
    const auto take = [&told](bool success, qint64 number, const QString &error) {
        told = {told.calls + 1, success, number, error};
    };
    switch (record) {
    case Record::History:
        service.getUserHistory([take](bool success, const model::UserHistory &history, const QString &error) {
            take(success, history.totalPilotTime, error);
        });
        break;
    case Record::Profile:
        service.getUserProfile([take](bool success, const model::UserProfile &profile, const QString &error) {
            take(success, profile.totalPilotTime, error);
        });
        break;
    case Record::Leaderboard:
        service.getLeaderboard([take](bool success, const model::RatingList &list, const QString &error) {
            take(success, list.pilots.isEmpty() ? 0 : list.pilots.first().time, error);
        });
        break;
    }
}

QString pathOf(Record record)
{
    switch (record) {
    case Record::History:
        return QStringLiteral("/api/users/histories/self");
    case Record::Profile:
        return QStringLiteral("/api/users/profiles/self");
    case Record::Leaderboard:
        break;
    }
    return QStringLiteral("/api/server/rating");
}

} // namespace

Q_DECLARE_METATYPE(Record)

/// History, profile and leaderboard, over real sockets.
class ApiRecordsTest : public QObject
{
    Q_OBJECT

private slots:
    void withoutJwtNothingIsAsked_data()
    {
        columns<Record, QString>("record", "error");
        QTest::newRow("history") << Record::History << QStringLiteral("No JWT token found, get user history fail");
        QTest::newRow("profile") << Record::Profile << QStringLiteral("No JWT token found, get user profile fail");
        QTest::newRow("leaderboard") << Record::Leaderboard
                                     << QStringLiteral("No JWT token found, get leaderboard fail");
    }

    void withoutJwtNothingIsAsked()
    {
        QFETCH(Record, record);
        ApiFixture fixture;
        ToldRecord told;
        ask(fixture.start(), record, told);
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        QTEST(told.error, "error");
        QVERIFY(fixture.peer.requests().isEmpty());
    }

    void requests_data()
    {
        columns<Record, QString>("record", "log");
        QTest::newRow("history") << Record::History
                                 << QStringLiteral("GetUserHistory request: %1/users/histories/self");
        QTest::newRow("profile") << Record::Profile << QStringLiteral("GetUserProfile request: %1/users/profiles/self");
        QTest::newRow("leaderboard") << Record::Leaderboard
                                     << QStringLiteral("GetLeaderboard request: %1/server/rating");
    }

    void requests()
    {
        QFETCH(Record, record);
        QFETCH(QString, log);
        ApiFixture fixture;
        fixture.startSignedIn(QStringLiteral("jwt-1"));
        LogCapture capture;
        ToldRecord told;
        ask(*fixture.service, record, told);
        TRY_COMPARE(told.calls, 1);
        const HttpPeer::Request &request = fixture.peer.requests().first();
        QCOMPARE(request.method, QByteArray("GET"));
        QCOMPARE(request.path, pathOf(record));
        QCOMPARE(request.header("Authorization"), QByteArray("Bearer jwt-1"));
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QCOMPARE(capture.texts(QtDebugMsg), QStringList(log.arg(fixture.peer.baseUrl())));
    }

    void replies_data()
    {
        columns<Record, QByteArray, bool, qint64, QString>("record", "body", "success", "number", "error");

        const auto data = [](const char *code, const char *value) {
            return QByteArray("{\"code\":\"") + code + "\",\"data\":" + value + "}";
        };
        const char *total = R"({"total_pilot_time":77})";
        const char *pilots = R"({"pilots":[{"time":77}]})";
        const QString none;
        QTest::newRow("history") << Record::History << data("GET_USER_HISTORY", total) << true << qint64(77) << none;
        QTest::newRow("profile") << Record::Profile << data("GET_USER_PROFILE", total) << true << qint64(77) << none;
        QTest::newRow("profile, second code")
            << Record::Profile << data("GET_PROFILE_SUCCESS", total) << true << qint64(77) << none;
        QTest::newRow("profile, third code")
            << Record::Profile << data("GET_CURRENT_PROFILE_SUCCESS", total) << true << qint64(77) << none;
        QTest::newRow("leaderboard, object")
            << Record::Leaderboard << data("GET_TIME_RATING", pilots) << true << qint64(77) << none;
        QTest::newRow("leaderboard, array")
            << Record::Leaderboard << data("GET_TIME_RATING", R"([{"time":77}])") << true << qint64(77) << none;
        QTest::newRow("success without data")
            << Record::History << QByteArray(R"({"code":"GET_USER_HISTORY"})") << true << qint64(0) << none;

        QTest::newRow("history, other code") << Record::History << data("GET_USER_PROFILE", total) << false << qint64(0)
                                             << QStringLiteral("获取用户历史失败");
        QTest::newRow("profile, other code") << Record::Profile << data("GET_USER_HISTORY", total) << false << qint64(0)
                                             << QStringLiteral("获取用户资料失败");
        QTest::newRow("leaderboard, other code")
            << Record::Leaderboard << data("X", pilots) << false << qint64(0) << QStringLiteral("Unknown error");
        QTest::newRow("the service's message comes first")
            << Record::History << QByteArray(R"({"code":"X","message":"closed"})") << false << qint64(0)
            << QStringLiteral("closed");
        QTest::newRow("leaderboard's message")
            << Record::Leaderboard << QByteArray(R"({"code":"X","message":"closed"})") << false << qint64(0)
            << QStringLiteral("closed");
        QTest::newRow("not JSON") << Record::Profile << QByteArray("<html>") << false << qint64(0)
                                  << QStringLiteral("获取用户资料失败");
        QTest::newRow("empty") << Record::Leaderboard << QByteArray() << false << qint64(0)
                               << QStringLiteral("Unknown error");
    }

    void replies()
    {
        QFETCH(Record, record);
        QFETCH(QByteArray, body);
        ApiFixture fixture;
        fixture.peer.answer("GET", pathOf(record), {.body = body});
        ToldRecord told;
        ask(fixture.startSignedIn(QStringLiteral("jwt-1")), record, told);
        TRY_COMPARE(told.calls, 1);
        QTEST(told.success, "success");
        QTEST(told.number, "number");
        QTEST(told.error, "error");
    }

    void networkErrors_data()
    {
        columns<Record, int>("record", "status");
        QTest::newRow("history, 401 is not retried") << Record::History << 401;
        QTest::newRow("profile, 500") << Record::Profile << 500;
        QTest::newRow("leaderboard, 404") << Record::Leaderboard << 404;
    }

    void networkErrors()
    {
        QFETCH(Record, record);
        QFETCH(int, status);
        ApiFixture fixture;
        fixture.peer.answer("GET", pathOf(record), {.status = status, .body = R"({"message":"closed"})"});
        ToldRecord told;
        ask(fixture.startSignedIn(QStringLiteral("jwt-1")), record, told);
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        QVERIFY2(told.error.startsWith(QStringLiteral("Network error: ")), qPrintable(told.error));
        QCOMPARE(fixture.peer.requests().size(), 1);
    }

    void theLongestHistoryHoldsNobodyUp_data()
    {
        columns<qint64, bool>("bodySize", "success");
        QTest::newRow("longest") << network::longestRecordReply << true;
        QTest::newRow("longer") << network::longestRecordReply + 1 << false;
        QTest::newRow("far longer") << 8 * network::longestRecordReply << false;
    }

    void theLongestHistoryHoldsNobodyUp()
    {
        QFETCH(qint64, bodySize);
        QFETCH(bool, success);
        const QByteArray flight = R"({"callsign":"CES1","start_time":"2026-01-01T00:00:00Z","online_time":1},)";
        QByteArray body = R"({"code":"GET_USER_HISTORY","data":{"total_pilot_time":77,"pilots":[)";
        body += flight.repeated((bodySize - body.size()) / flight.size() - 1) + "{}]}}";
        body += QByteArray(bodySize - body.size(), ' ');
        ApiFixture fixture;
        fixture.peer.answer("GET", pathOf(Record::History), {.body = body});
        ToldRecord told;
        network::ApiService &service = fixture.startSignedIn(QStringLiteral("jwt-1"));
        MainThreadWatch watch;
        ask(service, Record::History, told);
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(told.success, success);
        QCOMPARE(told.number, success ? 77 : 0);
        VERIFY_NO_STANDSTILL(watch);
    }

    void clearingDropsTheReply()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", pathOf(Record::History), {.delivery = HttpPeer::Delivery::Held});
        ToldRecord told;
        ask(fixture.startSignedIn(QStringLiteral("jwt-1")), Record::History, told);
        QSignalSpy finished(fixture.manager(), &QNetworkAccessManager::finished);
        TRY_COMPARE(fixture.peer.heldCount(), 1);
        fixture.service->clearSession();
        fixture.peer.release();
        TRY_COMPARE(finished.count(), 1);
        QCOMPARE(told.calls, 0);
    }
};

TARVO_TEST(ApiRecordsTest)
#include "ApiRecordsTest.moc"
