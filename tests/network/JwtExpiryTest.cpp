#include "network/JwtExpiry.h"
#include "network/ApiFixture.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>

using namespace tarvo::network;
using tarvo::test::ApiFixture;
using tarvo::test::columns;

namespace {
constexpr qint64 biggest = std::numeric_limits<qint64>::max();
constexpr qint64 smallest = std::numeric_limits<qint64>::min();
constexpr qint64 now = 1'700'000'000;
constexpr int longestInterval = 24 * 24 * 3600 * 1000;
} // namespace

class JwtExpiryTest : public QObject
{
    Q_OBJECT

private slots:
    void expiryOfAToken_data()
    {
        columns<QString, qint64>("jwt", "expected");
        const auto payload = [](const char *json) { return ApiFixture::jwtOf(json); };
        QTest::newRow("readable") << payload(R"({"exp":1700000000})") << qint64(1700000000);
        // Its Base64 holds "-" and "_", which only the URL alphabet has.
        const QString urlAlphabet = payload("{\"a\":\"\xc3\xbf\xc3\xbe>>>???\",\"exp\":5}");
        QVERIFY(urlAlphabet.contains(QLatin1Char('_')) || urlAlphabet.contains(QLatin1Char('-')));
        QTest::newRow("URL alphabet") << urlAlphabet << qint64(5);
        QTest::newRow("padded") << QString::fromLatin1("h." + QByteArray(R"({"exp":17})").toBase64() + ".s")
                                << qint64(17);
        QTest::newRow("64 bits") << payload(R"({"exp":9223372036854775807})") << biggest;
        QTest::newRow("beyond 64 bits") << payload(R"({"exp":1e300})") << qint64(0);
        QTest::newRow("negative") << payload(R"({"exp":-5})") << qint64(-5);
        QTest::newRow("as text") << payload(R"({"exp":"1700000000"})") << qint64(0);
        QTest::newRow("absent") << payload(R"({"iat":1})") << qint64(0);
        QTest::newRow("payload is an array") << payload("[1]") << qint64(0);
        QTest::newRow("payload is no JSON") << payload("exp=5") << qint64(0);
        QTest::newRow("payload is empty") << payload("") << qint64(0);
        QTest::newRow("payload is no Base64") << QStringLiteral("h.\u4e2d\u6587!!.s") << qint64(0);
        QTest::newRow("two parts") << QString::fromLatin1("h." + QByteArray(R"({"exp":17})").toBase64()) << qint64(0);
        QTest::newRow("four parts") << payload(R"({"exp":17})") + QStringLiteral(".x") << qint64(0);
        QTest::newRow("no dots") << QStringLiteral("opaque") << qint64(0);
        QTest::newRow("empty") << QString() << qint64(0);
    }

    void expiryOfAToken()
    {
        QFETCH(QString, jwt);
        QTEST(jwtExpiry(jwt), "expected");
    }

    void refreshDelay_data()
    {
        columns<qint64, qint64>("expiry", "expected");
        QTest::newRow("301 s left") << now + 301 << qint64(1000);
        QTest::newRow("300 s left") << now + 300 << qint64(0);
        QTest::newRow("299 s left") << now + 299 << qint64(0);
        QTest::newRow("an hour left") << now + 3600 << qint64(3300'000);
        QTest::newRow("expired") << now - 1 << qint64(0);
        QTest::newRow("unknown") << qint64(0) << qint64(0);
        QTest::newRow("long expired") << smallest << qint64(0);
        QTest::newRow("never expires") << biggest << biggest / 1000 * 1000;
    }

    void refreshDelay()
    {
        QFETCH(qint64, expiry);
        QTEST(refreshDelayMs(expiry, now), "expected");
    }

    void timerInterval_data()
    {
        columns<qint64, int>("delay", "expected");
        QTest::newRow("short") << qint64(1000) << 1000;
        QTest::newRow("24 days") << qint64(longestInterval) << longestInterval;
        QTest::newRow("24 days and 1 ms") << qint64(longestInterval) + 1 << longestInterval;
        QTest::newRow("for ever") << biggest << longestInterval;
    }

    void timerInterval()
    {
        QFETCH(qint64, delay);
        QTEST(timerIntervalMs(delay), "expected");
    }

    void soonExpiry_data()
    {
        columns<qint64, bool>("expiry", "expected");
        QTest::newRow("61 s left") << now + 61 << false;
        QTest::newRow("60 s left") << now + 60 << true;
        QTest::newRow("expired") << now - 1 << true;
        QTest::newRow("long expired") << smallest << true;
        QTest::newRow("unknown") << qint64(0) << false;
        QTest::newRow("never expires") << biggest << false;
    }

    void soonExpiry()
    {
        QFETCH(qint64, expiry);
        QTEST(expiresSoon(expiry, now), "expected");
    }
};

TARVO_TEST(JwtExpiryTest)
#include "JwtExpiryTest.moc"
