#include "network/ApiFixture.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

using namespace tarvo;
using namespace tarvo::test;

/// Construction from stored tokens, the refresh timer, and the end of a session.
class ApiTimerTest : public QObject
{
    Q_OBJECT

private slots:
    void withoutStoredTokensTheServiceIsSignedOut()
    {
        ApiFixture fixture;
        LogCapture log;
        fixture.start();
        QVERIFY(!fixture.service->hasToken());
        QVERIFY(!fixture.timer()->isActive());
        QVERIFY(log.lines().isEmpty());
    }

    void aStoredTokenIsRestored()
    {
        ApiFixture fixture;
        const QString jwt = fixture.jwtExpiringIn(3600);
        LogCapture log;
        fixture.startSignedIn(jwt);
        QVERIFY(fixture.service->hasToken());
        QCOMPARE(log.texts(), QStringList(QStringLiteral("Restored JWT token from config")));
    }

    void arming_data()
    {
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<int>("interval");
        constexpr int longest = 24 * 24 * 3600 * 1000;
        QTest::newRow("an hour") << qint64(3600) << 3300 * 1000;
        QTest::newRow("301 s") << qint64(301) << 1000;
        QTest::newRow("300 s arms nothing") << qint64(300) << 0;
        QTest::newRow("expired arms nothing") << qint64(-10) << 0;
        QTest::newRow("25 days") << qint64(25 * 24 * 3600) << longest;
        QTest::newRow("ten years") << qint64(10LL * 365 * 24 * 3600) << longest;
    }

    void arming()
    {
        QFETCH(qint64, seconds);
        QFETCH(int, interval);
        ApiFixture fixture;
        fixture.startSignedIn(fixture.jwtExpiringIn(seconds));
        QVERIFY(fixture.timer()->isSingleShot());
        QCOMPARE(fixture.timer()->isActive(), interval > 0);
        if (interval > 0)
            QCOMPARE(fixture.timer()->interval(), interval);
    }

    void aTokenWithoutExpiryArmsNothing()
    {
        ApiFixture fixture;
        fixture.startSignedIn(QStringLiteral("opaque"));
        QVERIFY(!fixture.timer()->isActive());
    }

    void aShortLivedTokenStopsTheOldTimer()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath,
                            {.body = ApiFixture::authBody({}, QStringLiteral("opaque"), QString())});
        Told told;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600)).refresh(QStringLiteral("refresh-1"), told.callback());
        TRY_COMPARE(told.calls, 1);
        QVERIFY(!fixture.timer()->isActive());
    }

    void theTimeoutRefreshes()
    {
        ApiFixture fixture;
        const QString next = fixture.jwtExpiringIn(7200);
        fixture.peer.answer("GET", sessionsPath, {.body = ApiFixture::authBody({}, next, QStringLiteral("refresh-2"))});
        LogCapture log;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600));
        fixture.fireTimer();
        TRY_COMPARE(log.startingWith(QStringLiteral("Auto refresh")).size(), 1);
        QCOMPARE(log.texts(QtInfoMsg), QStringList(QStringLiteral("Auto refresh token success")));
        const HttpPeer::Request &request = fixture.peer.requests().first();
        QCOMPARE(request.query, QString());
        QCOMPARE(request.header("Authorization"), QByteArray("Bearer refresh-1"));
        QCOMPARE(fixture.config.get(config::authToken), next);
        QVERIFY(fixture.timer()->isActive());
    }

    void aFailedAutoRefreshIsNotRetried()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, {.status = 401});
        LogCapture log;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600));
        fixture.fireTimer();
        TRY_COMPARE(log.texts(QtWarningMsg),
                    QStringList(QStringLiteral("Auto refresh token fail, message: 令牌已过期，请重新登录")));
        QCOMPARE(fixture.peer.requests().size(), 1);
        QVERIFY(!fixture.timer()->isActive());
        QVERIFY(fixture.service->hasToken());
    }

    void theLogOfAFailedAutoRefreshHoldsNoSecret()
    {
        ApiFixture fixture;
        const QString jwt = fixture.jwtExpiringIn(3600);
        const QJsonObject reply{{QStringLiteral("message"), QStringLiteral("no refresh-1 for %1\nplease").arg(jwt)}};
        fixture.peer.answer("GET", sessionsPath, {.body = QJsonDocument(reply).toJson()});
        LogCapture log;
        fixture.startSignedIn(jwt);
        fixture.fireTimer();
        TRY_COMPARE(log.texts(QtWarningMsg),
                    QStringList(QStringLiteral("Auto refresh token fail, message: no ****** for ****** please")));
        QVERIFY(!log.contains(QStringLiteral("refresh-1")));
    }

    void withoutRefreshTokenTheTimeoutOnlyLogs()
    {
        ApiFixture fixture;
        LogCapture log;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600), QString());
        fixture.fireTimer();
        TRY_COMPARE(log.texts(QtWarningMsg),
                    QStringList(QStringLiteral("Cannot auto refresh token: flush token is empty")));
        QVERIFY(fixture.peer.requests().isEmpty());
    }

    void aLongWaitIsArmedAgain()
    {
        ApiFixture fixture;
        fixture.startSignedIn(fixture.jwtExpiringIn(30LL * 24 * 3600));
        fixture.clock.advance(24LL * 24 * 3600 * 1000);
        QSignalSpy timeout(fixture.timer(), &QTimer::timeout);
        fixture.fireTimer();
        TRY_COMPARE(timeout.count(), 1);
        QVERIFY(fixture.timer()->isActive());
        QCOMPARE(fixture.timer()->interval(), 6 * 24 * 3600 * 1000 - 300 * 1000);
        QVERIFY(fixture.peer.requests().isEmpty());
        // The last part of the wait ends in the refresh.
        fixture.fireTimer();
        TRY_COMPARE(fixture.peer.requests().size(), 1);
    }

    void aLongWaitDuringWhichTheMachineSleptEndsInTheRefresh()
    {
        ApiFixture fixture;
        fixture.startSignedIn(fixture.jwtExpiringIn(30LL * 24 * 3600));
        fixture.clock.advance(31LL * 24 * 3600 * 1000);
        fixture.fireTimer();
        TRY_COMPARE(fixture.peer.requests().size(), 1);
    }

    void clearingStopsTheTimer()
    {
        ApiFixture fixture;
        fixture.startSignedIn(fixture.jwtExpiringIn(3600));
        QVERIFY(fixture.timer()->isActive());
        fixture.service->clearSession();
        QVERIFY(!fixture.timer()->isActive());
        QVERIFY(!fixture.service->hasToken());
    }

    void clearingForgetsTheUserAndTheRefreshToken()
    {
        ApiFixture fixture;
        fixture.peer.answer("POST", sessionsPath,
                            {.body = ApiFixture::authBody(QStringLiteral("LOGIN_SUCCESS"), fixture.jwtExpiringIn(30),
                                                          QStringLiteral("refresh-9"),
                                                          {{QStringLiteral("username"), QStringLiteral("pilot")}})});
        Told told;
        fixture.start().login(QStringLiteral("1001"), QStringLiteral("practice"), told.callback());
        TRY_COMPARE(told.calls, 1);
        fixture.service->clearSession();
        QCOMPARE(fixture.service->currentUser().username, QString());
        // The settings are the caller's to clear.
        QCOMPARE(fixture.config.get(config::authRefreshToken), QStringLiteral("refresh-9"));
        Told token;
        fixture.service->getFSDToken(token.tokenCallback());
        TRY_COMPARE(token.calls, 1);
        QCOMPARE(token.message, QStringLiteral("No JWT token found, get FSD token fail"));
        QCOMPARE(fixture.peer.requests().size(), 1);
    }

    void aServiceMayGoWhileARequestIsUnderWay()
    {
        ApiFixture fixture;
        fixture.peer.answer("GET", sessionsPath, {.delivery = HttpPeer::Delivery::Held});
        Told told;
        fixture.start().refresh(QStringLiteral("refresh-1"), told.callback());
        TRY_COMPARE(fixture.peer.heldCount(), 1);
        fixture.service.reset();
        QCOMPARE(fixture.peer.release(), 1);
        QCOMPARE(told.calls, 0);
    }
};

TARVO_TEST(ApiTimerTest)
#include "ApiTimerTest.moc"
