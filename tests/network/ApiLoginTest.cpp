#include "network/ApiFixture.h"
#include "network/ReplyOutcome.h"
#include "support/LogCapture.h"
#include "support/MainThreadWatch.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QNetworkCookie>
#include <QNetworkCookieJar>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

using namespace tarvo;
using namespace tarvo::test;

/// Signing in, over real sockets.
class ApiLoginTest : public QObject
{
    Q_OBJECT

private:
    const QString m_user = QStringLiteral("1001");
    const QString m_password = QStringLiteral("pra\"ctice\u98de");

    /// True when the answer has been told.
    bool logIn(ApiFixture &fixture, Told &told) const
    {
        fixture.start().login(m_user, m_password, told.callback());
        return waitFor([&told] { return told.calls == 1; });
    }

private slots:
    void theRequestCarriesTheAccount()
    {
        ApiFixture fixture;
        Told told;
        QVERIFY(logIn(fixture, told));
        QCOMPARE(fixture.peer.requests().size(), 1);
        const HttpPeer::Request &request = fixture.peer.requests().first();
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.path, sessionsPath);
        QCOMPARE(request.query, QString());
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QVERIFY(request.header("Authorization").isNull());
        QCOMPARE(QJsonDocument::fromJson(request.body).object(),
                 (QJsonObject{{QStringLiteral("username"), m_user}, {QStringLiteral("password"), m_password}}));
    }

    void successTakesTokensAndUser()
    {
        ApiFixture fixture;
        const QString jwt = fixture.jwtExpiringIn(3600);
        const QJsonObject user{{QStringLiteral("cid"), 1001}, {QStringLiteral("username"), QStringLiteral("pilot")}};
        fixture.peer.answer(
            "POST", sessionsPath,
            {.body = ApiFixture::authBody(QStringLiteral("LOGIN_SUCCESS"), jwt, QStringLiteral("refresh-9"), user)});
        Told told;
        QVERIFY(logIn(fixture, told));
        QVERIFY(told.success);
        QCOMPARE(told.message, QStringLiteral("fine"));
        QVERIFY(fixture.service->hasToken());
        QCOMPARE(fixture.service->currentUser().cid, 1001);
        QCOMPARE(fixture.service->currentUser().username, QStringLiteral("pilot"));
        QCOMPARE(fixture.config.get(config::authToken), jwt);
        QCOMPARE(fixture.config.get(config::authRefreshToken), QStringLiteral("refresh-9"));
        QVERIFY(fixture.timer()->isActive());
        QCOMPARE(fixture.timer()->interval(), 3300 * 1000);
    }

    void theBodyIsReadBeforeTheError()
    {
        ApiFixture fixture;
        fixture.peer.answer("POST", sessionsPath,
                            {.status = 500,
                             .body = ApiFixture::authBody(QStringLiteral("LOGIN_SUCCESS"), QStringLiteral("jwt"),
                                                          QStringLiteral("refresh"))});
        Told told;
        QVERIFY(logIn(fixture, told));
        QVERIFY(told.success);
    }

    void refusals_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("message");
        QTest::newRow("wrong password") << 401 << QByteArray(R"({"code":"WRONG_USERNAME_OR_PASSWORD"})")
                                        << QStringLiteral("用户名或密码错误");
        QTest::newRow("database") << 500 << QByteArray(R"({"code":"DATABASE_ERROR"})")
                                  << QStringLiteral("服务器数据库错误，请稍后重试");
        QTest::newRow("other code") << 403 << QByteArray(R"({"code":"BANNED"})")
                                    << QStringLiteral("登录失败 (错误代码: BANNED)");
        QTest::newRow("code of another reply") << 200 << QByteArray(R"({"code":"LOGIN_SUCCESS "})")
                                               << QStringLiteral("登录失败 (错误代码: LOGIN_SUCCESS )");
        QTest::newRow("not JSON") << 200 << QByteArray("<html>") << QStringLiteral("登录失败 (错误代码: )");
        QTest::newRow("JSON array") << 200 << QByteArray("[1]") << QStringLiteral("登录失败 (错误代码: )");
        QTest::newRow("nested beyond reason")
            << 200 << QByteArray(60000, '[') << QStringLiteral("登录失败 (错误代码: )");
        QTest::newRow("bytes") << 200 << QByteArray("\x00\xff\xfe{", 4) << QStringLiteral("登录失败 (错误代码: )");
        QTest::newRow("empty body") << 200 << QByteArray() << QStringLiteral("登录失败：服务器返回了无效的响应");
        QTest::newRow("404 with body") << 404 << QByteArray("{}") << QStringLiteral("登录失败 (错误代码: )");
    }

    void refusals()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        ApiFixture fixture;
        fixture.peer.answer("POST", sessionsPath, {.status = status, .body = body});
        Told told;
        QVERIFY(logIn(fixture, told));
        QVERIFY(!told.success);
        QTEST(told.message, "message");
        QVERIFY(!fixture.service->hasToken());
        QCOMPARE(fixture.config.get(config::authToken), QString());
        QVERIFY(!fixture.timer()->isActive());
    }

    void a404ShowsTheUrl()
    {
        ApiFixture fixture;
        Told told;
        QVERIFY(logIn(fixture, told));
        QCOMPARE(told.message,
                 QStringLiteral("服务器接口不存在 (404)\n请求地址: %1/users/sessions").arg(fixture.peer.baseUrl()));
    }

    void anotherErrorShowsStatusAndText()
    {
        ApiFixture fixture;
        fixture.peer.answer("POST", sessionsPath, {.status = 503});
        Told told;
        QVERIFY(logIn(fixture, told));
        QVERIFY2(told.message.startsWith(QStringLiteral("网络错误 (503): ")), qPrintable(told.message));
        QVERIFY(told.message.size() > QStringLiteral("网络错误 (503): ").size());
    }

    void aRefusedConnectionIsTold()
    {
        ApiFixture fixture;
        Told told;
        fixture.startAt(ApiFixture::deadBaseUrl()).login(m_user, m_password, told.callback());
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(told.message, QStringLiteral("无法连接到服务器，请检查网络连接"));
    }

    void anUnknownHostIsTold()
    {
        ApiFixture fixture;
        Told told;
        fixture.startAt(QStringLiteral("http://no-such-host.invalid/api")).login(m_user, m_password, told.callback());
        QTRY_COMPARE_WITH_TIMEOUT(told.calls, 1, 60000);
        QCOMPARE(told.message, QStringLiteral("无法找到服务器，请检查服务器地址"));
    }

    void aServiceThatKeepsSilentTimesOut()
    {
        ApiFixture fixture;
        fixture.peer.answer("POST", sessionsPath, {.delivery = HttpPeer::Delivery::Held});
        Told told;
        fixture.start().setTransferTimeout(std::chrono::milliseconds(50));
        fixture.service->login(m_user, m_password, told.callback());
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(told.message, QStringLiteral("连接超时，请稍后重试"));
    }

    void theTimeoutStartsAtThirtySeconds()
    {
        ApiFixture fixture;
        fixture.start();
        QCOMPARE(fixture.manager()->transferTimeout(), 30000);
    }

    /// One byte after the other, so that the transfer never stands still.
    void aBodyThatDripsTimesOut()
    {
        QTcpServer dripping;
        QVERIFY(dripping.listen(QHostAddress::LocalHost));
        QTimer drop;
        connect(&dripping, &QTcpServer::newConnection, this, [&] {
            QTcpSocket *socket = dripping.nextPendingConnection();
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n{");
            connect(&drop, &QTimer::timeout, socket, [socket] { socket->write(" "); });
            drop.start(1);
        });
        ApiFixture fixture;
        Told told;
        fixture.startAt(QStringLiteral("http://127.0.0.1:%1/api").arg(dripping.serverPort()));
        QCOMPARE(fixture.service->callTimeout(), std::chrono::milliseconds(60'000));
        fixture.service->setCallTimeout(std::chrono::milliseconds(100));
        fixture.service->login(m_user, m_password, told.callback());
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(told.message, QStringLiteral("连接超时，请稍后重试"));
    }

    void aClosedConnectionIsAnError()
    {
        ApiFixture fixture;
        fixture.peer.answer("POST", sessionsPath, {.delivery = HttpPeer::Delivery::CloseWithoutAnswer});
        Told told;
        QVERIFY(logIn(fixture, told));
        QVERIFY(!told.success);
        QVERIFY2(told.message.startsWith(QStringLiteral("网络错误 (0): ")), qPrintable(told.message));
    }

    void aBodyWithoutEndIsBrokenOff()
    {
        ApiFixture fixture;
        const QByteArray body(network::longestTokenReply + 1000000, ' ');
        fixture.peer.answer("POST", sessionsPath, {.body = body});
        Told told;
        fixture.start().login(m_user, m_password, told.callback());
        QTRY_COMPARE_WITH_TIMEOUT(told.calls, 1, 30000);
        QCOMPARE(told.message, QStringLiteral("网络错误 (200): The reply is too long"));
    }

    void theLongestRefusalHoldsNobodyUp()
    {
        ApiFixture fixture;
        // Letters that could be Base64, percent signs and backslashes: a secret is looked for in all of them.
        const QByteArray code = QByteArray("AAA%41\\\\u0041").repeated(60'000 / 14);
        fixture.peer.answer("POST", sessionsPath, {.body = R"({"code":")" + code + R"("})"});
        Told told;
        MainThreadWatch watch;
        fixture.start().login(m_user, m_password, told.callback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        VERIFY_NO_STANDSTILL(watch);
    }

    void aRedirectTakesTheTokenNowhereElse()
    {
        ApiFixture fixture;
        HttpPeer stranger;
        fixture.peer.answer("GET", fsdPath,
                            {.status = 302, .location = stranger.baseUrl().toLatin1() + "/users/sessions/fsd"});
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600)).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        QVERIFY(stranger.requests().isEmpty());
    }

    void theLogTellsTheReplyWithoutSecrets()
    {
        ApiFixture fixture;
        const QString jwt = fixture.jwtExpiringIn(3600);
        const QJsonObject data{{QStringLiteral("token"), jwt},
                               {QStringLiteral("flush_token"), QStringLiteral("fresh-7")}};
        const QJsonObject reply{{QStringLiteral("code"), QStringLiteral("LOGIN_SUCCESS")},
                                {QStringLiteral("message"),
                                 QStringLiteral("hello ") + m_password + u' ' + jwt + QStringLiteral(" fresh-7")},
                                {QStringLiteral("data"), data}};
        fixture.peer.answer("POST", sessionsPath, {.body = QJsonDocument(reply).toJson()});
        LogCapture log;
        Told told;
        QVERIFY(logIn(fixture, told));
        const QStringList expected{
            QStringLiteral("Login request: %1/users/sessions").arg(fixture.peer.baseUrl()),
            QStringLiteral("Login response status code: 200"),
            QStringLiteral("Login response data: {\"code\":\"LOGIN_SUCCESS\",\"data\":{\"flush_token\":\"******\","
                           "\"token\":\"******\"},\"message\":\"hello ****** ****** ******\"}"),
            QStringLiteral("Login response code: LOGIN_SUCCESS message: hello ****** ****** ******"),
        };
        QCOMPARE(log.texts(QtDebugMsg), expected);
        for (const QString &secret : {jwt, QStringLiteral("fresh-7"), m_password})
            QVERIFY(!log.contains(secret));
    }

    void cookiesGoNowhere()
    {
        ApiFixture fixture;
        fixture.peer.answer("POST", sessionsPath,
                            {.body = ApiFixture::authBody(QStringLiteral("LOGIN_SUCCESS"), QStringLiteral("jwt"),
                                                          QStringLiteral("refresh")),
                             .setCookie = "session=pilot-a; Path=/"});
        Told told;
        QVERIFY(logIn(fixture, told));
        QVERIFY(told.success);
        fixture.service->clearSession();
        fixture.service->login(QStringLiteral("2002"), m_password, told.callback());
        TRY_COMPARE(told.calls, 2);
        QCOMPARE(fixture.peer.requests().size(), 2);
        QVERIFY(fixture.peer.requests().last().header("Cookie").isNull());
        QVERIFY(fixture.manager()->cookieJar()->cookiesForUrl(QUrl(fixture.peer.baseUrl())).isEmpty());
    }

    void aReplyAfterTheSessionWasClearedDoesNothing()
    {
        ApiFixture fixture;
        fixture.peer.answer("POST", sessionsPath,
                            {.body = ApiFixture::authBody(QStringLiteral("LOGIN_SUCCESS"), fixture.jwtExpiringIn(3600),
                                                          QStringLiteral("refresh-9")),
                             .delivery = HttpPeer::Delivery::Held});
        Told told;
        fixture.start().login(m_user, m_password, told.callback());
        QSignalSpy finished(fixture.manager(), &QNetworkAccessManager::finished);
        TRY_COMPARE(fixture.peer.heldCount(), 1);
        fixture.service->clearSession();
        QCOMPARE(fixture.peer.release(), 1);
        TRY_COMPARE(finished.count(), 1);
        QCOMPARE(told.calls, 0);
        QVERIFY(!fixture.service->hasToken());
        QCOMPARE(fixture.config.get(config::authToken), QString());
        QCOMPARE(fixture.config.get(config::authRefreshToken), QString());
        QVERIFY(!fixture.timer()->isActive());
    }

    void aLoginAfterClearingWorks()
    {
        ApiFixture fixture;
        fixture.peer.answer("POST", sessionsPath,
                            {.body = ApiFixture::authBody(QStringLiteral("LOGIN_SUCCESS"), QStringLiteral("jwt"),
                                                          QStringLiteral("refresh"))});
        fixture.start().clearSession();
        Told told;
        fixture.service->login(m_user, m_password, told.callback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(told.success);
    }

    void repliesAreDeleted()
    {
        ApiFixture fixture;
        Told told;
        QVERIFY(logIn(fixture, told));
        TRY_VERIFY(fixture.manager()->findChildren<QNetworkReply *>().isEmpty());
    }
};

TARVO_TEST(ApiLoginTest)
#include "ApiLoginTest.moc"
