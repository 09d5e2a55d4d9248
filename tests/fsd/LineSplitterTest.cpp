#include "fsd/LineSplitter.h"
#include "support/TestRegistry.h"

#include <QRegularExpression>
#include <QTest>

using tarvo::fsd::LineSplitter;

namespace {

constexpr qsizetype longest = LineSplitter::longestLine;

QStringList takeAll(LineSplitter &splitter)
{
    QStringList lines;
    while (const std::optional<QString> line = splitter.take())
        lines << *line;
    return lines;
}

QStringList linesOf(const QStringList &chunks)
{
    LineSplitter splitter;
    QStringList lines;
    for (const QString &chunk : chunks) {
        splitter.feed(chunk);
        lines << takeAll(splitter);
    }
    return lines;
}

} // namespace

class LineSplitterTest : public QObject
{
    Q_OBJECT

private slots:
    void split_data()
    {
        QTest::addColumn<QStringList>("chunks");
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("partial");
        const QStringList none;
        QTest::newRow("one line") << QStringList{u"ab\r\n"_qs} << QStringList{u"ab"_qs} << QString();
        QTest::newRow("two lines") << QStringList{u"ab\r\ncd\r\n"_qs} << QStringList{u"ab"_qs, u"cd"_qs} << QString();
        QTest::newRow("no line end") << QStringList{u"abc"_qs} << none << u"abc"_qs;
        QTest::newRow("cut inside a line")
            << QStringList{u"ab\r\ncd"_qs, u"ef\r\n"_qs} << QStringList{u"ab"_qs, u"cdef"_qs} << QString();
        QTest::newRow("cut inside the line end")
            << QStringList{u"ab\r"_qs, u"\ncd\r\n"_qs} << QStringList{u"ab"_qs, u"cd"_qs} << QString();
        QTest::newRow("cut at the line end")
            << QStringList{u"ab\r\n"_qs, u"cd\r\n"_qs} << QStringList{u"ab"_qs, u"cd"_qs} << QString();
        QTest::newRow("cut three times") << QStringList{u"ab"_qs, u"cd"_qs, u"ef\r\n"_qs} << QStringList{u"abcdef"_qs}
                                         << QString();
        QTest::newRow("empty lines stay")
            << QStringList{u"\r\n\r\nab\r\n"_qs} << QStringList{QString(), QString(), u"ab"_qs} << QString();
        QTest::newRow("a lone line feed ends nothing")
            << QStringList{u"ab\ncd\r\n"_qs} << QStringList{u"ab\ncd"_qs} << QString();
        QTest::newRow("a lone carriage return ends nothing")
            << QStringList{u"ab\rcd\r\n"_qs} << QStringList{u"ab\rcd"_qs} << QString();
        QTest::newRow("two carriage returns") << QStringList{u"ab\r\r\n"_qs} << QStringList{u"ab\r"_qs} << QString();
        QTest::newRow("an empty chunk is ignored")
            << QStringList{u"ab"_qs, QString(), u"cd\r\n"_qs} << QStringList{u"abcd"_qs} << QString();
        QTest::newRow("a single character is lost") << QStringList{u"a"_qs} << none << QString();
        QTest::newRow("a single character is lost, the partial line stays")
            << QStringList{u"ab"_qs, u"c"_qs, u"de\r\n"_qs} << QStringList{u"abde"_qs} << QString();
        QTest::newRow("a line feed that arrives alone is lost")
            << QStringList{u"ab\r"_qs, u"\n"_qs} << none << u"ab\r"_qs;
        QTest::newRow("two characters are not lost") << QStringList{u"ab"_qs} << none << u"ab"_qs;
        QTest::newRow("a line end alone") << QStringList{u"\r\n"_qs} << QStringList{QString()} << QString();
        QTest::newRow("a zero character")
            << QStringList{u"a"_qs + QChar(0) + u"b\r\n"_qs} << QStringList{u"a"_qs + QChar(0) + u"b"_qs} << QString();
    }
    void split()
    {
        QFETCH(QStringList, chunks);
        QFETCH(QStringList, lines);
        QFETCH(QString, partial);
        QCOMPARE(linesOf(chunks), lines);
        LineSplitter lazy; // takes when all has come
        for (const QString &chunk : chunks)
            lazy.feed(chunk);
        QCOMPARE(takeAll(lazy), lines);
        QCOMPARE(lazy.waiting(), partial.size());
        lazy.feed(u"!\r\n"_qs);
        QCOMPARE(takeAll(lazy), QStringList{partial + u'!'});
    }

    void everyCutOfALineGivesTheSame()
    {
        const QString text = QStringLiteral("$PISERVER:CES1:1\r\n#TMA:B:hi\r\n");
        for (qsizetype cut = 2; cut <= text.size() - 2; ++cut) { // shorter pieces lose their character
            QCOMPARE(linesOf({text.first(cut), text.sliced(cut)}),
                     (QStringList{u"$PISERVER:CES1:1"_qs, u"#TMA:B:hi"_qs}));
        }
    }

    void forgetting_data()
    {
        QTest::addColumn<QStringList>("chunks");
        QTest::addColumn<int>("taken"); // lines, behind the first chunk
        QTest::addColumn<QStringList>("left");
        const QString lines = u"ab\r\ncd\r\n"_qs;
        const QString longLine(longest + 1, u'x');
        QTest::newRow("a partial line") << QStringList{u"xy"_qs} << 0 << QStringList();
        QTest::newRow("lines stay") << QStringList{lines} << 0 << QStringList{u"ab"_qs, u"cd"_qs};
        QTest::newRow("lines before a partial one stay")
            << QStringList{lines + u"xy"_qs} << 0 << QStringList{u"ab"_qs, u"cd"_qs};
        QTest::newRow("one is taken") << QStringList{lines + u"xy"_qs} << 1 << QStringList{u"cd"_qs};
        QTest::newRow("all are taken") << QStringList{lines + u"xy"_qs} << 2 << QStringList();
        QTest::newRow("all are taken and the end is seen") << QStringList{lines + u"xy"_qs} << 3 << QStringList();
        QTest::newRow("a line whose end came in two pieces")
            << QStringList{u"ab\r"_qs, u"\nxy"_qs} << 1 << QStringList{u"ab"_qs};
        QTest::newRow("a line that is too long") << QStringList{longLine} << 1 << QStringList();
        QTest::newRow("a line behind one that is too long")
            << QStringList{longLine, u"\r\nab\r\nxy"_qs} << 1 << QStringList{u"ab"_qs};
    }
    void forgetting()
    {
        QFETCH(QStringList, chunks);
        QFETCH(int, taken);
        QFETCH(QStringList, left);
        for (const bool partialOnly : {true, false}) {
            if (chunks.first().size() > longest)
                QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^FSD line dropped, too long"_qs));
            LineSplitter splitter;
            splitter.feed(chunks.first());
            for (int i = 0; i < taken; ++i)
                splitter.take();
            splitter.feed(chunks.value(1));
            if (partialOnly)
                splitter.forgetPartial();
            else
                splitter.reset();
            splitter.feed(u"ef\r\n"_qs);
            QCOMPARE(takeAll(splitter), (partialOnly ? left : QStringList()) + QStringList{u"ef"_qs});
        }
    }

    void aLineThatIsTooLongIsDropped_data()
    {
        QTest::addColumn<QStringList>("chunks");
        QTest::addColumn<QList<qsizetype>>("sizes"); // of the lines
        QTest::addColumn<int>("warnings");
        const QString x(longest, u'x');
        const QString end = u"\r\n"_qs;
        const QString ab = u"ab\r\n"_qs;
        QTest::newRow("the longest") << QStringList{x + end + ab} << QList<qsizetype>{longest, 2} << 0;
        QTest::newRow("the longest, cut in its end")
            << QStringList{x + u'\r', u"\nab\r\n"_qs} << QList<qsizetype>{longest, 2} << 0;
        QTest::newRow("the longest, its end comes late")
            << QStringList{x, end + ab} << QList<qsizetype>{longest, 2} << 0;
        QTest::newRow("one more") << QStringList{x + u'y' + end + ab} << QList<qsizetype>{2} << 1;
        QTest::newRow("one more, its end comes late") << QStringList{x + u'y', end + ab} << QList<qsizetype>{2} << 1;
        QTest::newRow("one more, cut in its end")
            << QStringList{x + u"y\r"_qs, u"\nab\r\n"_qs} << QList<qsizetype>{2} << 1;
        QTest::newRow("goes on and on") << QStringList{x + x, x, u"yy"_qs, x + end + ab} << QList<qsizetype>{2} << 1;
        QTest::newRow("a lone return in it")
            << QStringList{x + u"y\r"_qs, u"zz"_qs, end + ab} << QList<qsizetype>{2} << 1;
        QTest::newRow("two in a row") << QStringList{x + x + end + x + x, end + ab} << QList<qsizetype>{2} << 2;
    }
    void aLineThatIsTooLongIsDropped()
    {
        QFETCH(QStringList, chunks);
        QFETCH(QList<qsizetype>, sizes);
        QFETCH(int, warnings);
        for (int i = 0; i < warnings; ++i)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^FSD line dropped, too long"_qs));
        QTest::failOnWarning(QRegularExpression(u"."_qs));
        QList<qsizetype> got;
        for (const QString &line : linesOf(chunks))
            got << line.size();
        QCOMPARE(got, sizes);
    }

    /// What was dropped doesn't wait in memory.
    void aLineThatNeverEndsTakesNoRoom()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^FSD line dropped"_qs));
        LineSplitter splitter;
        for (int i = 0; i < 10; ++i) {
            splitter.feed(QString(longest, u'x'));
            QVERIFY(!splitter.take());
            QVERIFY(splitter.waiting() <= longest);
        }
        splitter.reset(); // nor does it swallow the next connection's first line
        splitter.feed(u"ab\r\n"_qs);
        QCOMPARE(takeAll(splitter), QStringList{u"ab"_qs});
    }
};

TARVO_TEST(LineSplitterTest)
#include "LineSplitterTest.moc"
