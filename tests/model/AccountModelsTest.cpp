#include "model/AccountModels.h"
#include "support/TestRegistry.h"

#include <QJsonDocument>
#include <QTest>

#include <limits>

using namespace tarvo::model;

namespace {

template <class T>
T read(const char *json)
{
    T record;
    record.parse(QJsonDocument::fromJson(json).object());
    return record;
}

const QDateTime epoch = QDateTime::fromSecsSinceEpoch(0, Qt::UTC);

void checkDefaults(const User &user)
{
    QCOMPARE(user.id, 0);
    QCOMPARE(user.username, QString());
    QCOMPARE(user.email, QString());
    QCOMPARE(user.cid, 0);
    QCOMPARE(user.avatarUrl, QString());
    QCOMPARE(user.qq, 0);
    QCOMPARE(user.rating, 0);
    QVERIFY(!user.guest && !user.underMonitor && !user.underSolo && !user.tier2);
    QCOMPARE(user.soloUntil, epoch);
    QCOMPARE(user.permission, 0);
    QCOMPARE(user.totalPilotTime, 0);
    QCOMPARE(user.totalAtcTime, 0);
    QCOMPARE(user.registerTime, epoch);
}

} // namespace

class AccountModelsTest : public QObject
{
    Q_OBJECT

private slots:
    void userTakesEveryKey()
    {
        const User user = read<User>(R"({"id":7,"username":"pilot","email":"p@example.org","cid":1001,
            "avatar_url":"/a.png","qq":10000123456,"rating":-1,"guest":true,"under_monitor":true,"under_solo":true,
            "tier2":true,"solo_until":"2030-05-06T07:08:09Z","permission":9007199254740993,"total_pilot_time":3600,
            "total_atc_time":60,"register_time":"2020-01-02T03:04:05.678Z"})");
        QCOMPARE(user.id, 7);
        QCOMPARE(user.username, QStringLiteral("pilot"));
        QCOMPARE(user.email, QStringLiteral("p@example.org"));
        QCOMPARE(user.cid, 1001);
        QCOMPARE(user.avatarUrl, QStringLiteral("/a.png"));
        QCOMPARE(user.qq, 10000123456);
        QCOMPARE(user.rating, -1);
        QVERIFY(user.guest && user.underMonitor && user.underSolo && user.tier2);
        QCOMPARE(user.soloUntil, QDateTime(QDate(2030, 5, 6), QTime(7, 8, 9), Qt::UTC));
        QCOMPARE(user.permission, 9007199254740993);
        QCOMPARE(user.totalPilotTime, 3600);
        QCOMPARE(user.totalAtcTime, 60);
        QCOMPARE(user.registerTime, QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5, 678), Qt::UTC));
    }

    void userWithoutKeysHasDefaults() { checkDefaults(read<User>("{}")); }

    void aMissingSoloUntilIsTheEpoch()
    {
        const User user = read<User>("{}");
        QVERIFY(user.soloUntil.isValid());
        QCOMPARE(user.soloUntil.toSecsSinceEpoch(), 0);
    }

    void mistypedUserKeysLeaveDefaults_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("null") << QByteArray("null");
        QTest::newRow("array") << QByteArray("[1]");
        QTest::newRow("object") << QByteArray("{\"a\":1}");
        QTest::newRow("fraction") << QByteArray("1.5");
        QTest::newRow("beyond 64 bits") << QByteArray("1e300");
        QTest::newRow("below 64 bits") << QByteArray("-1e300");
    }

    void mistypedUserKeysLeaveDefaults()
    {
        QFETCH(QByteArray, value);
        QByteArray json = R"({"id":?,"username":?,"email":?,"cid":?,"avatar_url":?,"qq":?,"rating":?,"guest":?,
            "under_monitor":?,"under_solo":?,"tier2":?,"solo_until":?,"permission":?,"total_pilot_time":?,
            "total_atc_time":?,"register_time":?})";
        json.replace('?', value);
        QVERIFY(!QJsonDocument::fromJson(json).isNull());
        checkDefaults(read<User>(json.constData()));
    }

    void textIsNeverANumber()
    {
        const User user = read<User>(R"({"cid":"1001","id":"7","rating":"3","permission":"9"})");
        QCOMPARE(user.cid, 0);
        QCOMPARE(user.id, 0);
        QCOMPARE(user.rating, 0);
        QCOMPARE(user.permission, 0);
        QCOMPARE(read<UserProfile>(R"({"total_pilot_time":"5"})").totalPilotTime, 0);
    }

    void aRatingBeyondAnIntegerIsZero()
    {
        QCOMPARE(read<User>(R"({"rating":4294967297})").rating, 0);
        QCOMPARE(read<UserProfile>(R"({"rating":-2147483649})").rating, 0);
    }

    void anUnreadableDateLeavesItsDefault()
    {
        QCOMPARE(read<User>(R"({"solo_until":"tomorrow"})").soloUntil, epoch);
        QVERIFY(!read<UserHistoryEntry>(R"({"start_time":"2020-13-40T99:99:99Z"})").startTime.isValid());
    }

    void parsingReplacesWhatWasThere()
    {
        User user = read<User>(R"({"id":7,"username":"pilot","guest":true,"solo_until":"2030-05-06T07:08:09Z"})");
        user.parse(QJsonObject());
        checkDefaults(user);
        AuthData auth = read<AuthData>(R"({"token":"a","flush_token":"b","user":{"id":1}})");
        auth.parse(QJsonObject());
        QCOMPARE(auth.token, QString());
        QCOMPARE(auth.user.id, 0);
        UserHistory history = read<UserHistory>(R"({"pilots":[{}],"total_pilot_time":3})");
        history.parse(QJsonObject());
        QVERIFY(history.pilots.isEmpty());
        QCOMPARE(history.totalPilotTime, 0);
    }

    void authDataHoldsTokensAndUser()
    {
        const AuthData data = read<AuthData>(R"({"token":"jwt","flush_token":"fresh","user":{"cid":1001}})");
        QCOMPARE(data.token, QStringLiteral("jwt"));
        QCOMPARE(data.flushToken, QStringLiteral("fresh"));
        QCOMPARE(data.user.cid, 1001);
    }

    void authDataWithMistypedKeysHasDefaults()
    {
        const AuthData data = read<AuthData>(R"({"token":1,"flush_token":{},"user":"pilot"})");
        QCOMPARE(data.token, QString());
        QCOMPARE(data.flushToken, QString());
        checkDefaults(data.user);
    }

    void fsdToken_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("token");
        QTest::addColumn<bool>("success");
        QTest::addColumn<QString>("error");
        QTest::newRow("success") << QByteArray(R"({"token":"t","success":true})") << QStringLiteral("t") << true
                                 << QString();
        QTest::newRow("failure") << QByteArray(R"({"success":false,"error_msg":"no"})") << QString() << false
                                 << QStringLiteral("no");
        QTest::newRow("success absent") << QByteArray(R"({"token":"t"})") << QStringLiteral("t") << false << QString();
        QTest::newRow("success as text") << QByteArray(R"({"success":"true"})") << QString() << false << QString();
        QTest::newRow("success as number") << QByteArray(R"({"success":1})") << QString() << false << QString();
        QTest::newRow("under data") << QByteArray(R"({"data":{"token":"t","success":true}})") << QString() << false
                                    << QString();
    }

    void fsdToken()
    {
        QFETCH(QByteArray, json);
        const FSDToken token = read<FSDToken>(json.constData());
        QTEST(token.token, "token");
        QTEST(token.success, "success");
        QTEST(token.errorMsg, "error");
    }

    void historyHoldsFlightsAndSessions()
    {
        const UserHistory history = read<UserHistory>(R"({"pilots":[
            {"callsign":"CCA123","start_time":"2024-01-01T00:00:00Z","end_time":"2024-01-01T01:00:00+08:00",
             "online_time":3600}, 5, null, {"callsign":"CCA124"}],
            "controllers":[{"callsign":"ZBAA_TWR"}],"total_pilot_time":9223372036854775807,"total_atc_time":12.0})");
        QCOMPARE(history.pilots.size(), 2);
        QCOMPARE(history.pilots.at(0).callsign, QStringLiteral("CCA123"));
        QCOMPARE(history.pilots.at(0).startTime, QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC));
        QCOMPARE(history.pilots.at(0).endTime.toUTC(), QDateTime(QDate(2023, 12, 31), QTime(17, 0), Qt::UTC));
        QCOMPARE(history.pilots.at(0).onlineTime, 3600);
        QCOMPARE(history.pilots.at(1).callsign, QStringLiteral("CCA124"));
        QCOMPARE(history.controllers.size(), 1);
        QCOMPARE(history.totalPilotTime, std::numeric_limits<qint64>::max());
        QCOMPARE(history.totalAtcTime, 12);
    }

    void anEntryWithoutEndKeepsItsTime()
    {
        const UserHistoryEntry entry = read<UserHistoryEntry>(R"({"callsign":"CCA123","online_time":77})");
        QVERIFY(!entry.endTime.isValid());
        QVERIFY(!entry.startTime.isValid());
        QCOMPARE(entry.onlineTime, 77);
    }

    void historyWithMistypedListsIsEmpty()
    {
        const UserHistory history = read<UserHistory>(R"({"pilots":{"callsign":"A"},"controllers":"none"})");
        QVERIFY(history.pilots.isEmpty());
        QVERIFY(history.controllers.isEmpty());
    }

    void bigTotals_data()
    {
        QTest::addColumn<QByteArray>("number");
        QTest::addColumn<qint64>("expected");
        QTest::newRow("whole") << QByteArray("42") << qint64(42);
        QTest::newRow("above 2^53") << QByteArray("9007199254740993") << qint64(9007199254740993);
        QTest::newRow("smallest") << QByteArray("-9223372036854775808") << std::numeric_limits<qint64>::min();
        QTest::newRow("fraction is rounded") << QByteArray("3600.6") << qint64(3601);
        QTest::newRow("2^63") << QByteArray("9223372036854775808") << qint64(0);
        QTest::newRow("huge") << QByteArray("1e300") << qint64(0);
        QTest::newRow("hugely negative") << QByteArray("-1e300") << qint64(0);
        QTest::newRow("text") << QByteArray("\"42\"") << qint64(0);
        QTest::newRow("true") << QByteArray("true") << qint64(0);
        QTest::newRow("list") << QByteArray("[42]") << qint64(0);
    }

    void bigTotals()
    {
        QFETCH(QByteArray, number);
        QFETCH(qint64, expected);
        QByteArray json = R"({"total_pilot_time":?,"total_atc_time":?,"permission":?})";
        json.replace('?', number);
        const UserProfile profile = read<UserProfile>(json.constData());
        QCOMPARE(profile.totalPilotTime, expected);
        QCOMPARE(profile.totalAtcTime, expected);
        QCOMPARE(profile.permission, expected);
    }

    void envelopeTakesItsThreeKeys()
    {
        const auto reply = read<ApiResponse<UserProfile>>(
            R"({"code":"GET_USER_PROFILE","message":"fine","data":{"rating":3},"more":1})");
        QCOMPARE(reply.code, QStringLiteral("GET_USER_PROFILE"));
        QCOMPARE(reply.message, QStringLiteral("fine"));
        QCOMPARE(reply.data.rating, 3);
    }

    void envelopeWithoutAnObjectHasDefaultData_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("absent") << QByteArray(R"({"code":"X"})");
        QTest::newRow("null") << QByteArray(R"({"code":"X","data":null})");
        QTest::newRow("array") << QByteArray(R"({"code":"X","data":[{"rating":3}]})");
        QTest::newRow("text") << QByteArray(R"({"code":"X","data":"rating"})");
    }

    void envelopeWithoutAnObjectHasDefaultData()
    {
        QFETCH(QByteArray, json);
        ApiResponse<UserProfile> reply;
        reply.data.rating = 9;
        reply.parse(QJsonDocument::fromJson(json).object());
        QCOMPARE(reply.code, QStringLiteral("X"));
        QCOMPARE(reply.data.rating, 0);
    }

    void envelopeWithMistypedTextsHasNone()
    {
        const auto reply = read<ApiResponse<UserProfile>>(R"({"code":200,"message":["no"]})");
        QCOMPARE(reply.code, QString());
        QCOMPARE(reply.message, QString());
    }
};

TARVO_TEST(AccountModelsTest)
#include "AccountModelsTest.moc"
