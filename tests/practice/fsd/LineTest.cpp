#include "practice/fsd/LineMask.h"
#include "practice/fsd/LineReader.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::practice;

class LineTest : public QObject
{
    Q_OBJECT

private slots:
    void masksSecrets_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("printed");
        const auto row = [](const char *name, const char16_t *line, const char16_t *printed) {
            QTest::newRow(name) << QString::fromUtf16(line) << QString::fromUtf16(printed);
        };
        row("pilot", u"#APAB1:SERVER:1001:secret:1:9:5:Lin ZBAA", u"#APAB1:SERVER:1001:******:1:9:5:Lin ZBAA");
        row("observer", u"#AAAB1:SERVER:Lin:1001:secret:1:9", u"#AAAB1:SERVER:Lin:1001:******:1:9");
        row("colon in it", u"#APAB1:SERVER:1001:se:cret:1:9:5:Lin", u"#APAB1:SERVER:1001:******:******:1:9:5:Lin");
        row("wrong case", u"#apAB1:SERVER:1001:secret:1:9:5:L", u"#apAB1:SERVER:1001:******:1:9:5:L");
        row("blank in front", u" #APAB1:SERVER:1001:secret:1:9:5:L", u" #APAB1:SERVER:1001:******:1:9:5:L");
        row("short", u"#APAB1:SERVER:1001:secret", u"#APAB1:SERVER:1001:******");
        row("too short", u"#APAB1:SERVER", u"#APAB1:SERVER");
        row("announcement", u"#APAB1:SERVER:1001::1:9:5:Lin", u"#APAB1:SERVER:1001::1:9:5:Lin");
        row("other line", u"#TMAB1:XY2:secret:practice", u"#TMAB1:XY2:secret:practice");
        row("empty", u"", u"");
    }

    void masksSecrets()
    {
        QFETCH(QString, line);
        QFETCH(QString, printed);
        QCOMPARE(maskSecrets(line), printed);
    }

    void readsLines_data()
    {
        QTest::addColumn<QList<QByteArray>>("chunks");
        QTest::addColumn<QList<QByteArray>>("lines");
        QTest::addColumn<int>("overlong");
        using L = QList<QByteArray>;
        QTest::newRow("one") << L{"abc\r\n"} << L{"abc"} << 0;
        QTest::newRow("two in one") << L{"a\r\nb\r\n"} << L{"a", "b"} << 0;
        QTest::newRow("in pieces") << L{"a", "b\r", "\nc", "\r\n"} << L{"ab", "c"} << 0;
        QTest::newRow("empty lines") << L{"\r\n\r\na\r\n"} << L{"a"} << 0;
        QTest::newRow("unfinished") << L{"abc"} << L{} << 0;
        QTest::newRow("line feed alone") << L{"a\nb\r\n"} << L{"a\nb"} << 0;
        QTest::newRow("as long as allowed") << L{"12345678\r\n"} << L{"12345678"} << 0;
        QTest::newRow("one too long") << L{"123456789\r\nb\r\n"} << L{"b"} << 1;
        QTest::newRow("too long in pieces") << L{"1234567", "89", "0", "1\r", "\nb\r\n"} << L{"b"} << 1;
        QTest::newRow("return at the edge") << L{"12345678\r", "\n9\r\n"} << L{"12345678", "9"} << 0;
        QTest::newRow("never ending") << L{QByteArray(1000, 'x'), QByteArray(1000, 'x')} << L{} << 1;
        QTest::newRow("two too long") << L{"1234567890\r\n1234567890\r\n"} << L{} << 2;
    }

    void readsLines()
    {
        QFETCH(QList<QByteArray>, chunks);
        QFETCH(QList<QByteArray>, lines);
        QFETCH(int, overlong);
        LineReader reader(8);
        QList<QByteArray> read;
        for (const QByteArray &chunk : chunks)
            read += reader.feed(chunk);
        QCOMPARE(read, lines);
        QCOMPARE(reader.takeOverlong(), overlong);
        QCOMPARE(reader.takeOverlong(), 0);
    }
};

TARVO_TEST(LineTest)
#include "LineTest.moc"
