#include "practice/LineReader.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::practice;

namespace {
using Lines = QList<QByteArray>;
}

class LineReaderTest : public QObject
{
    Q_OBJECT

private slots:
    void readsLines_data()
    {
        QTest::addColumn<QByteArray>("end");
        QTest::addColumn<Lines>("chunks");
        QTest::addColumn<Lines>("lines");
        QTest::addColumn<int>("overlong");
        const auto row = [](const char *name, const QByteArray &end, const Lines &chunks, const Lines &lines,
                            int overlong = 0) { QTest::newRow(name) << end << chunks << lines << overlong; };
        const QByteArray two = "\r\n";
        row("one", two, {"abc\r\n"}, {"abc"});
        row("two in one", two, {"a\r\nb\r\n"}, {"a", "b"});
        row("in pieces", two, {"a", "b\r", "\nc", "\r\n"}, {"ab", "c"});
        row("empty lines", two, {"\r\n\r\na\r\n"}, {"", "", "a"});
        row("unfinished", two, {"abc"}, {});
        row("line feed alone", two, {"a\nb\r\n"}, {"a\nb"});
        row("as long as allowed", two, {"12345678\r\n"}, {"12345678"});
        row("one too long", two, {"123456789\r\nb\r\n"}, {"b"}, 1);
        row("too long in pieces", two, {"1234567", "89", "0", "1\r", "\nb\r\n"}, {"b"}, 1);
        row("return at the edge", two, {"12345678\r", "\n9\r\n"}, {"12345678", "9"});
        row("never ending", two, {QByteArray(1000, 'x'), QByteArray(1000, 'x')}, {}, 1);
        row("two too long", two, {"1234567890\r\n1234567890\r\n"}, {}, 2);
        const QByteArray one = "\n";
        row("one sign: in pieces", one, {"a", "b\r", "\nc", "\n"}, {"ab\r", "c"});
        row("one sign: empty lines", one, {"\n\na\n"}, {"", "", "a"});
        row("one sign: as long as allowed", one, {"12345678", "\n"}, {"12345678"});
        row("one sign: one too long", one, {"123456789", "\nb\n"}, {"b"}, 1);
        row("one sign: never ending", one, {QByteArray(1000, 'x'), QByteArray(1000, 'x')}, {}, 1);
    }

    void readsLines()
    {
        QFETCH(QByteArray, end);
        QFETCH(Lines, chunks);
        QFETCH(Lines, lines);
        QFETCH(int, overlong);
        LineReader reader(end, 8);
        Lines read;
        for (const QByteArray &chunk : chunks)
            read += reader.feed(chunk);
        QCOMPARE(read, lines);
        QCOMPARE(reader.takeOverlong(), overlong);
        QCOMPARE(reader.takeOverlong(), 0);
    }
};

TARVO_TEST(LineReaderTest)
#include "LineReaderTest.moc"
