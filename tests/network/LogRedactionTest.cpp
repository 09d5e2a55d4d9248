#include "network/LogRedaction.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::network;

class LogRedactionTest : public QObject
{
    Q_OBJECT

private slots:
    void body_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("logged");
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
        const QByteArray body = "[\"" + QByteArray(100000, 'x') + "\"]";
        QCOMPARE(redactedBody(body, {QString(), QStringLiteral("pa\"ss")}).size(), 4096);
    }

    void text_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("logged");
        QTest::newRow("harmless") << QStringLiteral("fine") << QStringLiteral("fine");
        QTest::newRow("echoed") << QStringLiteral("no pass!word here, pass!word")
                                << QStringLiteral("no ****** here, ******");
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
};

TARVO_TEST(LogRedactionTest)
#include "LogRedactionTest.moc"
