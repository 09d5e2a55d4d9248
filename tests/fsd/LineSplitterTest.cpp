#include "fsd/LineSplitter.h"
#include "support/TestRegistry.h"

#include <QTest>

using tarvo::fsd::LineSplitter;

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
        LineSplitter splitter;
        QStringList got;
        for (const QString &chunk : chunks)
            splitter.feed(chunk, got);
        QCOMPARE(got, lines);
        QCOMPARE(splitter.partial(), partial);
    }

    void everyCutOfALineGivesTheSame()
    {
        const QString text = QStringLiteral("$PISERVER:CES1:1\r\n#TMA:B:hi\r\n");
        for (qsizetype cut = 2; cut <= text.size() - 2; ++cut) { // shorter pieces lose their character
            LineSplitter splitter;
            QStringList lines;
            splitter.feed(text.first(cut), lines);
            splitter.feed(text.sliced(cut), lines);
            QCOMPARE(lines, (QStringList{u"$PISERVER:CES1:1"_qs, u"#TMA:B:hi"_qs}));
            QVERIFY(splitter.partial().isEmpty());
        }
    }

    void resetForgetsThePartialLine()
    {
        LineSplitter splitter;
        QStringList lines;
        splitter.feed(u"ab"_qs, lines);
        splitter.reset();
        splitter.feed(u"cd\r\n"_qs, lines);
        QCOMPARE(lines, QStringList{u"cd"_qs});
    }

    void aLineThatNeverEndsIsDropped()
    {
        LineSplitter splitter;
        QStringList lines;
        splitter.feed(QString(LineSplitter::maximumPartial, u'x'), lines);
        QCOMPARE(splitter.partial().size(), LineSplitter::maximumPartial);
        QTest::ignoreMessage(QtWarningMsg, "FSD line without an end dropped after 1048578 characters");
        splitter.feed(u"yy"_qs, lines);
        QVERIFY(splitter.partial().isEmpty());
        splitter.feed(u"ab\r\n"_qs, lines);
        QCOMPARE(lines, QStringList{u"ab"_qs});
    }

    void aLongLineWithAnEndIsNoPartialLine()
    {
        LineSplitter splitter;
        QStringList lines;
        splitter.feed(QString(LineSplitter::maximumPartial + 1, u'x') + u"\r\n"_qs, lines);
        QCOMPARE(lines.size(), 1);
        QVERIFY(splitter.partial().isEmpty());
    }
};

TARVO_TEST(LineSplitterTest)
#include "LineSplitterTest.moc"
