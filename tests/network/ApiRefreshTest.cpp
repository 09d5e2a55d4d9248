#include "network/ApiFixture.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

using namespace tarvo;
using namespace tarvo::test;

/// Refreshing the tokens, over real sockets.
class ApiRefreshTest : public QObject
{
    Q_OBJECT

private:
    const QString m_held = QStringLiteral("refresh-1");

private slots:
    void theRequestCarriesTheRefreshToken_data()
    {
        QTest::addColumn<bool>("first");
        QTest::addColumn<QString>("query");
        QTest::newRow("at the program's start") << true << QStringLiteral("first=true");
        QTest::newRow("later") << false << QString();
    }

    void theRequestCarriesTheRefreshToken()
    {
        QFETCH(bool, first);
        ApiFixture fixture;
        LogCapture log;
        Told told;
        fixture.start().refresh(m_held, told.callback(), first);
        TRY_COMPARE(told.calls, 1);
        const HttpPeer::Request &request = fixture.peer.requests().first();
        QCOMPARE(request.method, QByteArray("GET"));
        QCOMPARE(request.path, sessionsPath);
        QTEST(request.query, "query");
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QCOMPARE(request.header("Authorization"), QByteArray("Bearer refresh-1"));
        QCOMPARE(request.body, QByteArray());
        const QString url = fixture.peer.baseUrl() + QStringLiteral("/users/sessions");
        QCOMPARE(log.texts(QtDebugMsg).first(),
                 QStringLiteral("Refresh request: ") + url + (first ? QStringLiteral("?first=true") : QString()));
    }

    void aTokenIsSuccessWhateverTheCode()
    {
        ApiFixture fixture;
        const QString jwt = fixture.jwtExpiringIn(3600);
        const QJsonObject user{{QStringLiteral("cid"), 1001}, {QStringLiteral("username"), QStringLiteral("pilot")}};
        fixture.peer.answer(
            "GET", sessionsPath,
            {.body = ApiFixture::authBody(QStringLiteral("ODD"), jwt, QStringLiteral("refresh-2"), user)});
        LogCapture log;
        Told told;
        fixture.startSignedIn(QString()).refresh(m_held, told.callback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(told.success);
        QCOMPARE(told.message, QStringLiteral("fine"));
        QCOMPARE(fixture.config.get(config::authToken), jwt);
        QCOMPARE(fixture.config.get(config::authRefreshToken), QStringLiteral("refresh-2"));
        QCOMPARE(fixture.service->currentUser().cid, 1001);
        QCOMPARE(fixture.timer()->interval(), 3300 * 1000);
        const QStringList expected{
            QStringLiteral("Refresh request: %1/users/sessions").arg(fixture.peer.baseUrl()),
            QStringLiteral("Refresh response code: ODD message: fine"),
            QStringLiteral("Updated current user info: CID=1001, username=pilot"),
        };
        QCOMPARE(log.texts(QtDebugMsg), expected);
    }

    void whatTheReplyLacksStays()
    {
        ApiFixture fixture;
        fixture.peer.answerOnce("GET", sessionsPath,
                                {.body = ApiFixture::authBody(
                                     {}, QStringLiteral("jwt-1"), QStringLiteral("refresh-2"),
                                     {{QStringLiteral("cid"), 5}, {QStringLiteral("username"), QStringLiteral("p")}})});
        // A user without a name doesn't count.
        fixture.peer.answerOnce(
            "GET", sessionsPath,
            {.body = ApiFixture::authBody({}, QStringLiteral("jwt-2"), QString(), {{QStringLiteral("cid"), 6}})});
        Told told;
        fixture.startSignedIn(QString()).refresh(m_held, told.callback());
        TRY_COMPARE(told.calls, 1);
        fixture.service->refresh(m_held, told.callback());
        TRY_COMPARE(told.calls, 2);
        QVERIFY(told.success);
        QCOMPARE(fixture.config.get(config::authToken), QStringLiteral("jwt-2"));
        QCOMPARE(fixture.config.get(config::authRefreshToken), QStringLiteral("refresh-2"));
        QCOMPARE(fixture.service->currentUser().cid, 5);
    }

    void failures_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("message");
        const QByteArray token = R"({"data":{"token":"jwt"}})";
        QTest::newRow("401") << 401 << QByteArray() << QStringLiteral("令牌已过期，请重新登录");
        QTest::newRow("the error comes before the body") << 401 << token << QStringLiteral("令牌已过期，请重新登录");
        QTest::newRow("no token, message")
            << 200 << QByteArray(R"({"message":"gone","data":{}})") << QStringLiteral("gone");
        QTest::newRow("no token, no message") << 200 << QByteArray("{}") << QStringLiteral("刷新令牌失败，请重新登录");
        QTest::newRow("token at the top")
            << 200 << QByteArray(R"({"token":"jwt"})") << QStringLiteral("刷新令牌失败，请重新登录");
        QTest::newRow("not JSON") << 200 << QByteArray("<html>") << QStringLiteral("刷新令牌失败，请重新登录");
        QTest::newRow("empty body") << 200 << QByteArray() << QStringLiteral("刷新令牌失败，请重新登录");
    }

    void failures()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, {.status = status, .body = body});
        Told told;
        fixture.startSignedIn(QStringLiteral("old")).refresh(m_held, told.callback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        QTEST(told.message, "message");
        // The session goes on with the token that it has.
        QVERIFY(fixture.service->hasToken());
        QCOMPARE(fixture.config.get(config::authToken), QStringLiteral("old"));
        QCOMPARE(fixture.peer.requests().size(), 1);
    }

    void anotherErrorIsNamed()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, {.status = 503, .body = "{}"});
        Told told;
        fixture.start().refresh(m_held, told.callback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY2(told.message.startsWith(QStringLiteral("网络错误: ")), qPrintable(told.message));
        QVERIFY(!told.message.contains(QLatin1Char('%')));
        QVERIFY(fixture.service->wasAnswered());
    }

    void aRefusedConnectionIsTold()
    {
        ApiFixture fixture;
        Told told;
        fixture.startAt(ApiFixture::deadBaseUrl()).refresh(m_held, told.callback());
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(told.message, QStringLiteral("无法连接到服务器"));
        QVERIFY(!fixture.service->wasAnswered());
    }

    void aServiceThatKeepsSilentTimesOut()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, {.delivery = HttpPeer::Delivery::Held});
        Told told;
        fixture.start().setTransferTimeout(std::chrono::milliseconds(50));
        fixture.service->refresh(m_held, told.callback());
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(told.message, QStringLiteral("连接超时"));
    }

    void noSecretIsLogged()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, {.body = R"({"code":"jwt-7","message":"fresh-7\nrefresh-1",
                                "data":{"token":"jwt-7","flush_token":"fresh-7","user":{"username":"jwt-7"}}})"});
        LogCapture log;
        Told told;
        fixture.startSignedIn(QStringLiteral("jwt-6")).refresh(m_held, told.callback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(log.contains(QStringLiteral("Refresh response code: ****** message: ****** ******")));
        for (const char *secret : {"jwt-6", "jwt-7", "fresh-7", "refresh-1"})
            QVERIFY2(!log.contains(QLatin1String(secret)), secret);
    }

    void theLaterOfTwoRepliesWins()
    {
        ApiFixture fixture;
        fixture.peer.answerOnce("GET", sessionsPath,
                                {.body = ApiFixture::authBody({}, QStringLiteral("asked first"), {}),
                                 .delivery = HttpPeer::Delivery::Held});
        fixture.peer.answerOnce("GET", sessionsPath,
                                {.body = ApiFixture::authBody({}, QStringLiteral("answered first"), {})});
        Told told;
        fixture.start().refresh(m_held, told.callback());
        TRY_COMPARE(fixture.peer.heldCount(), 1);
        fixture.service->refresh(m_held, told.callback());
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(fixture.config.get(config::authToken), QStringLiteral("answered first"));
        fixture.peer.release();
        TRY_COMPARE(told.calls, 2);
        QCOMPARE(fixture.config.get(config::authToken), QStringLiteral("asked first"));
    }

    void aReplyAfterTheSessionWasClearedStoresNothing()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath,
                            {.body = ApiFixture::authBody({}, fixture.jwtExpiringIn(3600), QStringLiteral("refresh-2"),
                                                          {{QStringLiteral("username"), QStringLiteral("p")}}),
                             .delivery = HttpPeer::Delivery::Held});
        Told told;
        fixture.startSignedIn(QString()).refresh(m_held, told.callback());
        QSignalSpy finished(fixture.manager(), &QNetworkAccessManager::finished);
        TRY_COMPARE(fixture.peer.heldCount(), 1);
        fixture.service->clearSession();
        fixture.peer.release();
        TRY_COMPARE(finished.count(), 1);
        QCOMPARE(told.calls, 0);
        QVERIFY(!fixture.service->hasToken());
        QCOMPARE(fixture.service->currentUser().username, QString());
        QCOMPARE(fixture.config.get(config::authToken), QString());
        QCOMPARE(fixture.config.get(config::authRefreshToken), m_held); // the caller's to clear
        QVERIFY(!fixture.timer()->isActive());
    }
};

TARVO_TEST(ApiRefreshTest)
#include "ApiRefreshTest.moc"
