#include "voice/transport/LineBuffer.h"

#include "support/TestRegistry.h"

#include <QByteArray>
#include <QList>
#include <QTest>

#include <algorithm>

using tarvo::voice::LineBuffer;

namespace {

/// Puts the bytes in as they may come from a socket, at most `atOnce` at a time, and takes the lines that they end.
QList<QByteArray> linesOf(LineBuffer &buffer, const QByteArray &bytes, qsizetype atOnce = LineBuffer::roomSize)
{
    QList<QByteArray> lines;
    for (qsizetype at = 0; at < bytes.size(); at += atOnce) {
        const QByteArray part = bytes.mid(at, atOnce);
        const auto room = buffer.room();
        Q_ASSERT(room.size() == LineBuffer::roomSize && part.size() <= qsizetype(room.size()));
        std::copy(part.begin(), part.end(), room.begin());
        buffer.add(static_cast<size_t>(part.size()));
        while (const auto line = buffer.next())
            lines.append(QByteArray(line->data(), static_cast<qsizetype>(line->size())));
    }
    return lines;
}

QByteArray x(int count)
{
    return QByteArray(count, 'x');
}

} // namespace

class LineBufferTest : public QObject
{
    Q_OBJECT

private slots:
    void cuts_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QList<QByteArray>>("lines");
        using Lines = QList<QByteArray>;
        QTest::newRow("one") << QByteArray("a\n") << Lines{"a"};
        QTest::newRow("two") << QByteArray("a\nbc\n") << Lines{"a", "bc"};
        QTest::newRow("an empty one") << QByteArray("\n\na\n") << Lines{"", "", "a"};
        QTest::newRow("no end") << QByteArray("a") << Lines{};
        QTest::newRow("the second has no end") << QByteArray("a\nb") << Lines{"a"};
        QTest::newRow("a carriage return and a NUL are bytes like others")
            << QByteArray("a\r\n\0b\n", 6) << Lines{"a\r", QByteArray("\0b", 2)};
        QTest::newRow("many") << QByteArray("line\n").repeated(20'000) << Lines(20'000, "line");
        QTest::newRow("as long as may be") << x(LineBuffer::longestUnended) + "\nb\n"
                                           << Lines{x(LineBuffer::longestUnended), "b"};
    }
    void cuts()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QList<QByteArray>, lines);
        for (const int atOnce : {1, 2, 3, 1000, 4095, 4096}) {
            LineBuffer buffer;
            QCOMPARE(linesOf(buffer, bytes, atOnce), lines);
        }
    }

    void bytesUpToTheLimitStay()
    {
        LineBuffer buffer;
        QCOMPARE(linesOf(buffer, x(65536)), QList<QByteArray>());
        QCOMPARE(linesOf(buffer, "\n"), QList<QByteArray>{x(65536)});
    }

    void oneMoreDiscardsThemAll()
    {
        LineBuffer buffer;
        QCOMPARE(linesOf(buffer, x(65536)), QList<QByteArray>());
        QCOMPARE(linesOf(buffer, "x"), QList<QByteArray>());
        QCOMPARE(linesOf(buffer, "b\n"), QList<QByteArray>{"b"});
    }

    /// What is left behind a line is what counts.
    void aLineBeforeDoesNotCount()
    {
        LineBuffer buffer;
        QCOMPARE(linesOf(buffer, "a\n" + x(65536) + "\n"), (QList<QByteArray>{"a", x(65536)}));
    }

    /// 10 MB; what is left of it is a line of its own.
    void aVeryLongLineIsDiscardedPieceByPiece()
    {
        LineBuffer buffer;
        QCOMPARE(linesOf(buffer, x(10'000'000)), QList<QByteArray>());
        const QList<QByteArray> lines = linesOf(buffer, "\nb\n");
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.first().size() <= qsizetype(LineBuffer::longestUnended));
        QCOMPARE(lines.last(), "b");
    }
};

TARVO_TEST(LineBufferTest)
#include "LineBufferTest.moc"
