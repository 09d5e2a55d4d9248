#include "practice/replay/Recording.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::practice;

class RecordingTest : public QObject
{
    Q_OBJECT

    static RecordedConnection only(const QString &log)
    {
        const auto recording = readRecording(log);
        return recording && recording->size() == 1 ? recording->first() : RecordedConnection();
    }

private slots:
    void aSessionIsRead()
    {
        const RecordedConnection read = only(u"[12:00:00.000] <<< $DISERVER:CLIENT:1:ab\n"
                                             "[12:00:00.100] >>> $IDAB1:SERVER:bdc0\n"
                                             "[12:00:00.200] >>> #APAB1:SERVER:1001:******:1:9:5:Li\n"
                                             "[12:00:00.250] <<< #TMSERVER:AB1:Welcome é\n"
                                             "[12:00:00.300] >>> @N:AB1:2000\n"
                                             "[12:00:01.200] <<< @N:CCA123:2000\n"_qs);
        QCOMPARE(read.callsign, u"AB1"_qs);
        QCOMPARE(read.greeting, (QList<RecordedLine>{{0, u"$DISERVER:CLIENT:1:ab"_qs}}));
        QCOMPARE(read.lines, (QList<RecordedLine>{{50, u"#TMSERVER:AB1:Welcome é"_qs}, {1000, u"@N:CCA123:2000"_qs}}));
    }

    void theLoginMayBeNotedBeforeTheGreeting()
    {
        const auto recording = readRecording(u"[12:00:00.000] >>> #APAB1:SERVER:1001:******:1:9:5:Li\n"
                                             "[12:00:00.000] <<< $DISERVER:CLIENT:1:ab\n"
                                             "[12:00:00.050] <<< #TMSERVER:AB1:1\n"
                                             "[12:10:00.000] >>> #APAB2:SERVER:1001:******:1:9:5:Li\n"
                                             "[12:10:00.000] <<< $DISERVER:CLIENT:1:cd\n"
                                             "[12:10:00.070] <<< #TMSERVER:AB2:2\n"_qs);
        QVERIFY(recording && recording->size() == 2);
        QCOMPARE(recording->at(0).callsign, u"AB1"_qs);
        QCOMPARE(recording->at(0).greeting.size(), 1);
        QCOMPARE(recording->at(0).lines, (QList<RecordedLine>{{50, u"#TMSERVER:AB1:1"_qs}}));
        QCOMPARE(recording->at(1).callsign, u"AB2"_qs);
        QCOMPARE(recording->at(1).lines, (QList<RecordedLine>{{70, u"#TMSERVER:AB2:2"_qs}}));
    }

    void anObserversSessionIsRead()
    {
        const RecordedConnection read = only(u"[12:00:00.000] <<< $DISERVER:CLIENT:1:ab\n"
                                             "[12:00:00.200] >>> #AAAB1A:SERVER:Li:1001:******:1:9\n"
                                             "[12:00:00.250] <<< #TMSERVER:AB1A:Welcome\n"_qs);
        QCOMPARE(read.callsign, u"AB1A"_qs);
        QCOMPARE(read.lines.size(), 1);
    }

    void eachGreetingBeginsAConnection()
    {
        const auto recording = readRecording(u"[12:00:00.000] <<< $DISERVER:CLIENT:1:ab\n"
                                             "[12:00:01.000] >>> #APAB1:SERVER\n"
                                             "[12:00:02.000] <<< #TMSERVER:AB1:1\n"
                                             "[12:10:00.000] <<< $DISERVER:CLIENT:1:cd\n"
                                             "[12:10:01.000] >>> #APAB2:SERVER\n"
                                             "[12:10:04.000] <<< #TMSERVER:AB2:2\n"_qs);
        QVERIFY(recording && recording->size() == 2);
        QCOMPARE(recording->at(0).callsign, u"AB1"_qs);
        QCOMPARE(recording->at(1).callsign, u"AB2"_qs);
        QCOMPARE(recording->at(1).lines, (QList<RecordedLine>{{3000, u"#TMSERVER:AB2:2"_qs}}));
    }

    void aLogThatBeginsInMidFlight()
    {
        const RecordedConnection read = only(u"[12:00:05.000] >>> @N:AB1:2000\n"
                                             "[12:00:06.000] <<< @N:CCA123:2000\n"
                                             "[12:00:07.500] <<< @N:CCA123:2000\n"_qs);
        QCOMPARE(read.callsign, QString());
        QVERIFY(read.greeting.isEmpty());
        QCOMPARE(read.lines.size(), 2);
        QCOMPARE(read.lines.at(1).ms, 1500);
    }

    void timesGoOn_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::addColumn<qint64>("ms");
        const QString night = u"23:59:59.000"_qs;
        QTest::newRow("later") << night << u"23:59:59.500"_qs << qint64(500);
        QTest::newRow("past midnight") << night << u"00:00:01.000"_qs << qint64(2000);
        QTest::newRow("the clock was set back") << night << u"23:50:00.000"_qs << qint64(0);
        QTest::newRow("set back past midnight") << u"00:00:01.000"_qs << night << qint64(0);
        QTest::newRow("half a day less a bit") << u"00:00:00.000"_qs << u"11:59:59.999"_qs << qint64(43'199'999);
    }
    void timesGoOn()
    {
        QFETCH(const QString, first);
        QFETCH(const QString, second);
        const RecordedConnection read =
            only(u"[%1] <<< #TMSERVER:AB1:1\n[%2] <<< #TMSERVER:AB1:2\n"_qs.arg(first, second));
        QCOMPARE(read.lines.size(), 2);
        QTEST(read.lines.at(1).ms, "ms");
    }

    void otherLinesArePassedOver()
    {
        const RecordedConnection read = only(u"# remark\n[12:00:00.000] === x\n[25:00:00.000] <<< x\n"
                                             "[12:00:00.000] <<< \n[12:00:00.000] <<< #TMSERVER:AB1:1\r\n[12:00:0"_qs);
        QCOMPARE(read.lines.size(), 1);
        QCOMPARE(read.lines.first().text, u"#TMSERVER:AB1:1"_qs);
    }

    void noRecording_data()
    {
        QTest::addColumn<QString>("log");
        QTest::newRow("empty") << QString();
        QTest::newRow("something else") << u"2026-01-01 12:00:00.000 | INFO  | main.cpp:1 - <<< x\n"_qs;
        QTest::newRow("the client alone") << u"[12:00:00.000] >>> #APAB1:SERVER\n"_qs;
    }
    void noRecording()
    {
        QFETCH(const QString, log);
        QVERIFY(!readRecording(log));
    }

    void linesAreReaddressed_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("expected");
        QTest::newRow("the recipient") << u"#TMSERVER:AB1:AB1 hello"_qs << u"#TMSERVER:XY9:AB1 hello"_qs;
        QTest::newRow("the sender") << u"$CQAB1:CCA123:RN"_qs << u"$CQXY9:CCA123:RN"_qs;
        QTest::newRow("a fast position") << u"^AB1:40.0"_qs << u"^XY9:40.0"_qs;
        QTest::newRow("a slow position") << u"@N:AB1:2000"_qs << u"@N:XY9:2000"_qs;
        QTest::newRow("the last field") << u"$XXSERVER:AB1"_qs << u"$XXSERVER:XY9"_qs;
        QTest::newRow("somebody else") << u"#TMSERVER:AB12:hello"_qs << u"#TMSERVER:AB12:hello"_qs;
        QTest::newRow("nothing") << QString() << QString();
    }
    void linesAreReaddressed()
    {
        QFETCH(const QString, line);
        QTEST(readdressed(line, u"AB1"_qs, u"XY9"_qs), "expected");
        QCOMPARE(readdressed(line, u"AB1"_qs, u"AB1"_qs), line);
        QCOMPARE(readdressed(line, {}, u"XY9"_qs), line);
    }
};

TARVO_TEST(RecordingTest)
#include "RecordingTest.moc"
