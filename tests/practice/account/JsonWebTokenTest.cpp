#include "practice/account/JsonWebToken.h"
#include "practice/account/TokenAuthority.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::practice;
using Verdict = JsonWebToken::Verdict;

namespace {
// RFC 7515, appendix A.1: header and payload with their line breaks, the key, the signature.
const QByteArray rfcInput = "eyJ0eXAiOiJKV1QiLA0KICJhbGciOiJIUzI1NiJ9."
                            "eyJpc3MiOiJqb2UiLA0KICJleHAiOjEzMDA4MTkzODAsDQogImh0dHA6Ly9leGFtcGxlLmNvbS9pc19yb290Ijp0"
                            "cnVlfQ";
const QByteArray rfcSignature = "dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk";
const QByteArray rfcKey =
    QByteArray::fromBase64("AyM1SysPpbyDfgZld3umj1qzKObwVMkoqQ-EstJQLr_T-1qS0gZH75aKtMN3Yj0iPS4hcgUuTwjAzZr1Z9CAow",
                           QByteArray::Base64UrlEncoding);
constexpr qint64 rfcExpiry = 1300819380;
} // namespace

class JsonWebTokenTest : public QObject
{
    Q_OBJECT

private slots:
    void signsThePublishedExample() { QCOMPARE(JsonWebToken::signature(rfcInput, rfcKey), rfcSignature); }

    void readsThePublishedExample()
    {
        const auto reading = JsonWebToken::read(rfcInput + '.' + rfcSignature, rfcKey, rfcExpiry - 1);
        QCOMPARE(reading.verdict, Verdict::Valid);
        QCOMPARE(reading.claims.value(QLatin1String("iss")).toString(), QStringLiteral("joe"));
    }

    void expiresAtItsSecond()
    {
        QCOMPARE(JsonWebToken::read(rfcInput + '.' + rfcSignature, rfcKey, rfcExpiry).verdict, Verdict::Expired);
    }

    void refusesWhatItDidNotSign_data()
    {
        QTest::addColumn<QByteArray>("token");
        QTest::addColumn<Verdict>("verdict");
        QTest::newRow("empty") << QByteArray() << Verdict::Malformed;
        QTest::newRow("two parts") << rfcInput << Verdict::Malformed;
        QTest::newRow("four parts") << rfcInput + ".a.b" << Verdict::Malformed;
        QTest::newRow("no Base64") << QByteArray("*.*.*") << Verdict::Malformed;
        QTest::newRow("algorithm none") << QByteArray("eyJhbGciOiJub25lIn0.eyJleHAiOjk5OTk5OTk5OTl9.")
                                        << Verdict::Malformed;
        QTest::newRow("huge") << QByteArray(100'000, 'a') + "." + QByteArray(100'000, 'b') + ".c" << Verdict::Malformed;
        QTest::newRow("signature cut") << rfcInput + '.' + rfcSignature.chopped(1) << Verdict::BadSignature;
        QTest::newRow("no signature") << rfcInput + '.' << Verdict::BadSignature;
        QTest::newRow("signature of another key")
            << rfcInput + '.' + JsonWebToken::signature(rfcInput, "key") << Verdict::BadSignature;
    }

    void refusesWhatItDidNotSign()
    {
        QFETCH(QByteArray, token);
        QFETCH(Verdict, verdict);
        QCOMPARE(JsonWebToken::read(token, rfcKey, 0).verdict, verdict);
    }

    void aTokenWithoutExpiryIsExpired()
    {
        const QByteArray token = JsonWebToken::sign({{QStringLiteral("sub"), QStringLiteral("1")}}, "key");
        QCOMPARE(JsonWebToken::read(token, "key", 0).verdict, Verdict::Expired);
    }

    void theAuthorityKnowsItsOwn()
    {
        tarvo::test::ManualClock clock;
        TokenAuthority authority(clock);
        authority.setLife(TokenUse::Fsd, 120);
        const QByteArray token = authority.issue(TokenUse::Fsd, 1001);
        qint64 cid = 0;
        QCOMPARE(authority.check(TokenUse::Fsd, token, &cid), Verdict::Valid);
        QCOMPARE(cid, 1001);
        QCOMPARE(authority.check(TokenUse::Access, token), Verdict::BadSignature);
        QVERIFY(authority.issue(TokenUse::Fsd, 1001) != token);
        clock.advance(119'999);
        QCOMPARE(authority.check(TokenUse::Fsd, token), Verdict::Valid);
        clock.advance(1);
        QCOMPARE(authority.check(TokenUse::Fsd, token), Verdict::Expired);
    }

    void revokedTokensAreForgeries()
    {
        TokenAuthority authority;
        const QByteArray token = authority.issue(TokenUse::Access, 1001);
        authority.revokeAll();
        QCOMPARE(authority.check(TokenUse::Access, token), Verdict::BadSignature);
    }
};

TARVO_TEST(JsonWebTokenTest)
#include "JsonWebTokenTest.moc"
