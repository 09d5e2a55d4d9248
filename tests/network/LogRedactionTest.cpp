#include "network/LogRedaction.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <cstring>

using namespace tarvo::network;

class LogRedactionTest : public QObject
{
    Q_OBJECT

private slots:
    void body_data()
    {
        tarvo::test::columns<QByteArray, QString>("body", "logged");
        QTest::newRow("nothing secret") << QByteArray("{ \"code\": \"X\" }") << QStringLiteral(R"({"code":"X"})");
        QTest::newRow("token at the top")
            << QByteArray(R"({"token":"abc"})") << QStringLiteral(R"({"token":"******"})");
        QTest::newRow("tokens under data")
            << QByteArray(R"({"data":{"flush_token":"abc","token":"def","user":{"id":1}}})")
            << QStringLiteral(R"({"data":{"flush_token":"******","token":"******","user":{"id":1}}})");
        QTest::newRow("in an array") << QByteArray(R"([[{"token":"abc"}],2])")
                                     << QStringLiteral(R"([[{"token":"******"}],2])");
        QTest::newRow("token that is no text")
            << QByteArray(R"({"token":["abc"]})") << QStringLiteral(R"({"token":"******"})");
        QTest::newRow("escaped key") << QByteArray(R"({"to\u006ben":"abc"})")
                                     << QStringLiteral(R"({"token":"******"})");
        QTest::newRow("given twice") << QByteArray(R"({"token":"abc","token":"def"})")
                                     << QStringLiteral(R"({"token":"******"})");
        QTest::newRow("password") << QByteArray(R"({"password":"abc"})") << QStringLiteral(R"({"password":"******"})");
        QTest::newRow("echoed secret") << QByteArray("[\"my pa\\\"ss\",{\"pa\\u0022ss\":1}]")
                                       << QStringLiteral(R"(["my ******",{"******":1}])");
        QTest::newRow("cut short") << QByteArray("{\"token\":\"abc") << QStringLiteral("<13 bytes, not JSON>");
        QTest::newRow("HTML") << QByteArray("<html></html>") << QStringLiteral("<13 bytes, not JSON>");
        QTest::newRow("empty") << QByteArray() << QStringLiteral("<0 bytes, not JSON>");
    }

    void body()
    {
        QFETCH(QByteArray, body);
        QTEST(redactedBody(body, {QString(), QStringLiteral("pa\"ss")}), "logged");
    }

    void aLongBodyIsCut()
    {
        const QByteArray body = "[\"" + QByteArray(10000, 'x') + "\"]";
        QCOMPARE(redactedBody(body, {QString(), QStringLiteral("pa\"ss")}).size(), 4096);
    }

    void text_data()
    {
        tarvo::test::columns<QString, QString>("text", "logged");
        QTest::newRow("harmless") << QStringLiteral("fine") << QStringLiteral("fine");
        QTest::newRow("echoed") << QStringLiteral("no pass!word here, pass!word")
                                << QStringLiteral("no ****** here, ******");
        QTest::newRow("JSON-escaped") << QStringLiteral(R"(got {"password":"pass\u0021word"})")
                                      << QStringLiteral(R"(got {"password":"******"})");
        QTest::newRow("escaped twice") << QStringLiteral(R"(got pass\\u0021word!)") << QStringLiteral("got ******!");
        QTest::newRow("percent-encoded") << QStringLiteral("at ?p=pass%21word&x=%21")
                                         << QStringLiteral("at ?p=******&x=%21");
        QTest::newRow("percent-encoded JSON")
            << QStringLiteral("at %22pass%5cu0021word%22") << QStringLiteral("at %22******%22");
        QTest::newRow("in Base64") << QStringLiteral("got cGFzcyF3b3Jk; cGFzcw==")
                                   << QStringLiteral("got ******; cGFzcw==");
        for (const char *before : {"", "x", "xy"}) {
            const QByteArray request = before + QByteArray(R"({"password":"pass\u0021word"})");
            QTest::addRow("a request in Base64, after %d bytes", int(strlen(before)))
                << QStringLiteral("got:") + QString::fromLatin1(request.toBase64()) << QStringLiteral("got:******");
            QTest::addRow("a request in Base64 for addresses, after %d bytes", int(strlen(before)))
                << QStringLiteral("got ") + QString::fromLatin1(request.toBase64(QByteArray::Base64UrlEncoding)) +
                       QStringLiteral(" end")
                << QStringLiteral("got ****** end");
        }
        QTest::newRow("overlapping") << QStringLiteral("pass!wordpass%21word") << QStringLiteral("************");
        QTest::newRow("unfinished escapes")
            << QStringLiteral("\\ % %4 \\u00 \\ud800\\u") << QStringLiteral("\\ % %4 \\u00 \\ud800\\u");
        QTest::newRow("endless") << QString(100000, u'x') << QString(4096, u'x');
        QTest::newRow("secret across the cut")
            << QString(4090, u'x') + QStringLiteral("pass!word") << QString(4090, u'x') + QStringLiteral("******");
        QTest::newRow("forged line") << QStringLiteral("a\r\n2024 | INFO") << QStringLiteral("a  2024 | INFO");
    }

    void text()
    {
        QFETCH(QString, text);
        QTEST(redactedText(text, {QString(), QStringLiteral("pass!word")}), "logged");
    }

    void otherSecrets_data()
    {
        tarvo::test::columns<QString, QString, QString>("secret", "text", "logged");
        QTest::newRow("quotes, as JSON writes them")
            << QStringLiteral("p\"\\/\n") << QStringLiteral(R"(x p\"\\\/\n x)") << QStringLiteral("x ****** x");
        QTest::newRow("beyond ASCII, as JSON writes it")
            << QStringLiteral(u"\u5bc6\U0001F6EB") << QStringLiteral(R"(x \u5BC6\ud83d\udeeb x)")
            << QStringLiteral("x ****** x");
        QTest::newRow("beyond ASCII, percent-encoded")
            << QStringLiteral(u"\u5bc6") << QStringLiteral("x %e5%AF%86 x") << QStringLiteral("x ****** x");
        QTest::newRow("a blank in a form")
            << QStringLiteral("a b+c") << QStringLiteral("x a+b%2Bc x") << QStringLiteral("x ****** x");
        QTest::newRow("a plus in an address")
            << QStringLiteral("a+b") << QStringLiteral("x a+b a%2bb") << QStringLiteral("x ****** ******");
        QTest::newRow("Base64 for addresses")
            << QStringLiteral("~~~\?\?\?") << QStringLiteral("x fn5-Pz8_ x") << QStringLiteral("x ****** x");
        QTest::newRow("just long enough for Base64")
            << QStringLiteral("abcd") << QStringLiteral("x YWJjZA== x") << QStringLiteral("x ****** x");
        QTest::newRow("too short for Base64")
            << QStringLiteral("abc") << QStringLiteral("x YWJj abc") << QStringLiteral("x YWJj ******");
        const QString token(2000, u'T');
        QTest::newRow("cut by the limit of the search")
            << token << QString(token + u'-').repeated(100) << QStringLiteral("******-").repeated(3).chopped(1);
    }

    void otherSecrets()
    {
        QFETCH(QString, secret);
        QFETCH(QString, text);
        QTEST(redactedText(text, {secret}), "logged");
    }

    void aBodyTooLongToLookThroughIsOnlyCounted()
    {
        QCOMPARE(redactedBody("[\"" + QByteArray(20'000, 'x') + "\"]", {}), QStringLiteral("<20004 bytes>"));
    }
};

TARVO_TEST(LogRedactionTest)
#include "LogRedactionTest.moc"
