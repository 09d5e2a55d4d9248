#include "manager/AtisBuffers.h"
#include "common/Callsign.h"
#include "support/TestRegistry.h"

#include <QTest>

using tarvo::manager::AtisBuffers;

class AtisBuffersTest : public QObject
{
    Q_OBJECT

private slots:
    void linesOfAStation()
    {
        AtisBuffers buffers;
        buffers.begin(u"ZBAA_TWR"_qs);
        buffers.begin(u"ZSSS_TWR"_qs);
        buffers.append(u"ZBAA_TWR"_qs, u"one"_qs);
        buffers.append(u"ZSSS_TWR"_qs, u"other"_qs);
        buffers.append(u"ZBAA_TWR"_qs, QString());
        QCOMPARE(buffers.take(u"ZBAA_TWR"_qs), (QStringList{u"one"_qs, QString()}));
        QCOMPARE(buffers.take(u"ZSSS_TWR"_qs), QStringList{u"other"_qs});
    }

    void nobodyAsked()
    {
        AtisBuffers buffers;
        buffers.append(u"ZBAA_TWR"_qs, u"unasked"_qs);
        QVERIFY(!buffers.take(u"ZBAA_TWR"_qs).has_value());
        buffers.begin(u"ZBAA_TWR"_qs);
        QCOMPARE(buffers.take(u"ZBAA_TWR"_qs), QStringList());
    }

    void takenOnce()
    {
        AtisBuffers buffers;
        buffers.begin(u"ZBAA_TWR"_qs);
        buffers.append(u"ZBAA_TWR"_qs, u"one"_qs);
        QVERIFY(buffers.take(u"ZBAA_TWR"_qs).has_value());
        buffers.append(u"ZBAA_TWR"_qs, u"late"_qs);
        QVERIFY(!buffers.take(u"ZBAA_TWR"_qs).has_value());
    }

    void beginningAnewForgetsTheLines()
    {
        AtisBuffers buffers;
        buffers.begin(u"ZBAA_TWR"_qs);
        buffers.append(u"ZBAA_TWR"_qs, u"old"_qs);
        buffers.begin(u"ZBAA_TWR"_qs);
        buffers.append(u"ZBAA_TWR"_qs, u"new"_qs);
        QCOMPARE(buffers.take(u"ZBAA_TWR"_qs), QStringList{u"new"_qs});
    }

    void aFloodOfLinesIsCut()
    {
        AtisBuffers buffers;
        buffers.begin(u"ZBAA_TWR"_qs);
        for (qsizetype i = 0; i <= AtisBuffers::maximumLines; ++i)
            buffers.append(u"ZBAA_TWR"_qs, QString::number(i));
        const QStringList lines = buffers.take(u"ZBAA_TWR"_qs).value_or(QStringList());
        QCOMPARE(lines.size(), AtisBuffers::maximumLines);
        QCOMPARE(lines.constLast(), QString::number(AtisBuffers::maximumLines - 1));
    }

    void aFloodOfCharactersIsCut_data()
    {
        QTest::addColumn<QList<int>>("sent");
        QTest::addColumn<QList<int>>("kept");
        constexpr int most = AtisBuffers::maximumCharacters;
        QTest::newRow("just fits") << QList<int>{most} << QList<int>{most};
        QTest::newRow("one too long") << QList<int>{most + 1} << QList<int>{};
        QTest::newRow("in all too long") << QList<int>{most - 5, 6, 5} << QList<int>{most - 5, 5};
        QTest::newRow("full") << QList<int>{most, 1, 0} << QList<int>{most, 0};
    }

    void aFloodOfCharactersIsCut()
    {
        QFETCH(QList<int>, sent);
        QFETCH(QList<int>, kept);
        AtisBuffers buffers;
        buffers.begin(u"ZBAA_TWR"_qs);
        for (const int length : sent)
            buffers.append(u"ZBAA_TWR"_qs, QString(length, u'x'));
        QList<int> lengths;
        const QStringList lines = buffers.take(u"ZBAA_TWR"_qs).value_or(QStringList());
        for (const QString &line : lines)
            lengths.append(static_cast<int>(line.size()));
        QCOMPARE(lengths, kept);
    }

    void stationsThatNeverAnswerMakeRoom()
    {
        AtisBuffers buffers;
        const auto callsign = [](qsizetype i) { return u"S%1"_qs.arg(i, 4, 10, QLatin1Char('0')); };
        for (qsizetype i = AtisBuffers::maximumStations - 1; i >= 0; --i) // against the alphabet
            buffers.begin(callsign(i));
        const QString longestAgo = callsign(AtisBuffers::maximumStations - 1);
        const QString next = callsign(AtisBuffers::maximumStations - 2);
        buffers.begin(longestAgo); // known: nobody has to go, and it is the last one asked now
        buffers.begin(u"ZBAA_TWR"_qs);
        QVERIFY(!buffers.take(next).has_value());
        QVERIFY(buffers.take(longestAgo).has_value());
        QVERIFY(buffers.take(callsign(0)).has_value());
        QVERIFY(buffers.take(u"ZBAA_TWR"_qs).has_value());
    }

    void callsignsBeyondMeasure()
    {
        AtisBuffers buffers;
        const QString longest(tarvo::common::longestCallsign, u'X');
        buffers.begin(longest);
        buffers.begin(longest + u'X');
        QVERIFY(buffers.take(longest).has_value());
        QVERIFY(!buffers.take(longest + u'X').has_value());
    }
};

TARVO_TEST(AtisBuffersTest)
#include "AtisBuffersTest.moc"
