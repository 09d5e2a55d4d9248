#include "network/ApiFixture.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

using namespace tarvo;
using namespace tarvo::test;

/// The token for the FSD login, over real sockets.
class ApiTokenTest : public QObject
{
    Q_OBJECT

private:
    static HttpPeer::Answer goodToken() { return {.body = R"({"success":true,"token":"fsd-token"})"}; }
    static HttpPeer::Answer freshJwt(const ApiFixture &fixture, qint64 seconds = 3600)
    {
        return {.body = ApiFixture::authBody({}, fixture.jwtExpiringIn(seconds), QStringLiteral("refresh-2"))};
    }
    static QStringList paths(const ApiFixture &fixture)
    {
        QStringList result;
        for (const HttpPeer::Request &request : fixture.peer.requests())
            result.append(request.path);
        return result;
    }

private slots:
    void theRequestCarriesTheJwt()
    {
        ApiFixture fixture;
        const QString jwt = fixture.jwtExpiringIn(3600);
        fixture.peer.answer("GET", fsdPath, goodToken());
        LogCapture log;
        Told told;
        fixture.startSignedIn(jwt).getFSDToken(told.tokenCallback());
        QCOMPARE(told.calls, 0); // never before the event loop
        TRY_COMPARE(told.calls, 1);
        QVERIFY(told.success);
        QCOMPARE(told.token, QStringLiteral("fsd-token"));
        QCOMPARE(told.message, QString());
        const HttpPeer::Request &request = fixture.peer.requests().first();
        QCOMPARE(request.header("Authorization"), "Bearer " + jwt.toUtf8());
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QVERIFY(
            log.texts(QtDebugMsg)
                .contains(QStringLiteral("GetFSDToken request: %1/users/sessions/fsd").arg(fixture.peer.baseUrl())));
        QVERIFY(!log.contains(jwt));
        QVERIFY(!log.contains(QStringLiteral("fsd-token")));
    }

    void withoutJwtItFails()
    {
        ApiFixture fixture;
        Told told;
        fixture.start().getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        QCOMPARE(told.message, QStringLiteral("No JWT token found, get FSD token fail"));
        QVERIFY(fixture.peer.requests().isEmpty());
    }

    void aJwtAboutToExpireIsRefreshedFirst_data()
    {
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<QStringList>("asked");
        const QStringList refreshed{sessionsPath, fsdPath};
        QTest::newRow("61 s") << qint64(61) << QStringList{fsdPath};
        QTest::newRow("60 s") << qint64(60) << refreshed;
        QTest::newRow("0 s") << qint64(0) << refreshed;
        QTest::newRow("expired") << qint64(-3600) << refreshed;
    }

    void aJwtAboutToExpireIsRefreshedFirst()
    {
        QFETCH(qint64, seconds);
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, freshJwt(fixture));
        fixture.peer.answer("GET", fsdPath, goodToken());
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(seconds)).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(told.success);
        QTEST(paths(fixture), "asked");
        // The request carries the token of the refresh, where there was one.
        const QString jwt = fixture.config.get(config::authToken);
        QCOMPARE(fixture.peer.requests().last().header("Authorization"), "Bearer " + jwt.toUtf8());
    }

    void theClockDecides()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, freshJwt(fixture));
        fixture.peer.answer("GET", fsdPath, goodToken());
        fixture.startSignedIn(fixture.jwtExpiringIn(3600));
        fixture.clock.advance(3540 * 1000);
        Told told;
        fixture.service->getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(paths(fixture), (QStringList{sessionsPath, fsdPath}));
    }

    void aRefreshIsTriedOnce()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, freshJwt(fixture, 10)); // again about to expire
        fixture.peer.answer("GET", fsdPath, goodToken());
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(60)).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(told.success);
        QCOMPARE(paths(fixture), (QStringList{sessionsPath, fsdPath}));
    }

    void aRefreshedJwtThatIsRefusedIsRefreshedAgain()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, freshJwt(fixture));
        fixture.peer.answer("GET", fsdPath, {.status = 401});
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(60)).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        QCOMPARE(paths(fixture), (QStringList{sessionsPath, fsdPath, sessionsPath, fsdPath}));
    }

    void anUnreadableExpiryNeedsNoRefresh()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", fsdPath, goodToken());
        Told told;
        fixture.startSignedIn(QStringLiteral("opaque")).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(told.success);
        QCOMPARE(paths(fixture), QStringList{fsdPath});
    }

    void anExpiredJwtWithoutRefreshTokenFails()
    {
        ApiFixture fixture;
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(60), QString()).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(told.message, QStringLiteral("JWT token expired and refresh token is unavailable"));
        QVERIFY(fixture.peer.requests().isEmpty());
    }

    void aFailedRefreshIsTold()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, {.status = 401});
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(60)).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        QCOMPARE(told.message, QStringLiteral("Refresh token failed: 令牌已过期，请重新登录"));
        QCOMPARE(paths(fixture), QStringList{sessionsPath});
    }

    void refusals_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("message");
        QTest::newRow("refused") << QByteArray(R"({"success":false,"token":"t","error_msg":"banned"})")
                                 << QStringLiteral("banned");
        QTest::newRow("success absent") << QByteArray(R"({"token":"t"})") << QString();
        QTest::newRow("not JSON") << QByteArray("oops") << QString();
        QTest::newRow("empty") << QByteArray() << QString();
    }

    void refusals()
    {
        QFETCH(QByteArray, body);
        ApiFixture fixture;
        fixture.peer.answer("GET", fsdPath, {.body = body});
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600)).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        QCOMPARE(told.token, QString());
        QTEST(told.message, "message");
    }

    void a401IsRetriedOnceAfterARefresh()
    {
        ApiFixture fixture;
        fixture.peer.answerOnce("GET", fsdPath, {.status = 401});
        fixture.peer.answerOnce("GET", fsdPath, goodToken());
        fixture.peer.answer("GET", sessionsPath, freshJwt(fixture, 7200));
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600)).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(told.success);
        QCOMPARE(paths(fixture), (QStringList{fsdPath, sessionsPath, fsdPath}));
        QCOMPARE(fixture.peer.requests().at(1).header("Authorization"), QByteArray("Bearer refresh-1"));
        QCOMPARE(fixture.peer.requests().last().header("Authorization"),
                 "Bearer " + fixture.jwtExpiringIn(7200).toUtf8());
    }

    void aSecond401IsTheEnd()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", fsdPath, {.status = 401});
        fixture.peer.answer("GET", sessionsPath, freshJwt(fixture));
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600)).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        QVERIFY2(told.message.startsWith(QStringLiteral("Network error: ")), qPrintable(told.message));
        QCOMPARE(paths(fixture), (QStringList{fsdPath, sessionsPath, fsdPath}));
    }

    void a401WithoutRefreshTokenIsNotRetried()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", fsdPath, {.status = 401});
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600), QString()).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY2(told.message.startsWith(QStringLiteral("Network error: ")), qPrintable(told.message));
        QVERIFY(told.message.size() > QStringLiteral("Network error: ").size());
        QCOMPARE(paths(fixture), QStringList{fsdPath});
    }

    void a401WithAFailedRefreshTellsTheRefresh()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", fsdPath, {.status = 401});
        fixture.peer.answer("GET", sessionsPath, {.body = R"({"message":"gone"})"});
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600)).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(told.message, QStringLiteral("Refresh token failed: gone"));
        QCOMPARE(paths(fixture), (QStringList{fsdPath, sessionsPath}));
    }

    void otherErrorsAreNotRetried_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("403") << 403;
        QTest::newRow("404") << 404;
        QTest::newRow("500") << 500;
    }

    void otherErrorsAreNotRetried()
    {
        QFETCH(int, status);
        ApiFixture fixture;
        fixture.peer.answer("GET", fsdPath, {.status = status, .body = R"({"success":true,"token":"t"})"});
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600)).getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!told.success);
        QVERIFY2(told.message.startsWith(QStringLiteral("Network error: ")), qPrintable(told.message));
        QCOMPARE(paths(fixture), QStringList{fsdPath});
    }

    void clearingWhileTheRefreshIsUnderWayEndsTheChain()
    {
        ApiFixture fixture;
        HttpPeer::Answer held = freshJwt(fixture);
        held.delivery = HttpPeer::Delivery::Held;
        fixture.peer.answer("GET", sessionsPath, held);
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(60)).getFSDToken(told.tokenCallback());
        QSignalSpy finished(fixture.manager(), &QNetworkAccessManager::finished);
        TRY_COMPARE(fixture.peer.heldCount(), 1);
        fixture.service->clearSession();
        fixture.peer.release();
        TRY_COMPARE(finished.count(), 1);
        QCOMPARE(told.calls, 0);
        QCOMPARE(paths(fixture), QStringList{sessionsPath});
    }

    void clearingDropsAFailureThatWaitsForTheEventLoop()
    {
        ApiFixture fixture;
        Told dropped;
        Told told;
        fixture.start().getFSDToken(dropped.tokenCallback());
        fixture.service->clearSession();
        fixture.service->getFSDToken(told.tokenCallback());
        TRY_COMPARE(told.calls, 1);
        QCOMPARE(dropped.calls, 0);
    }
};

TARVO_TEST(ApiTokenTest)
#include "ApiTokenTest.moc"
