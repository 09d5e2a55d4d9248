#include "ui/viewmodel/SpeechTimeline.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using tarvo::ui::Speech;
using tarvo::ui::SpeechTimeline;

class SpeechTimelineTest : public QObject
{
    Q_OBJECT

private slots:
    void framesOfOneMakeOneBar()
    {
        SpeechTimeline line;
        for (qint64 now = 1000; now <= 3000; now += 20)
            line.heard(1, u"ZBAA_TWR"_qs, false, now);
        QCOMPARE(line.rows(), (QList<Speech>{{1, u"ZBAA_TWR"_qs, false, 1000, 3000}}));
    }

    void aBarGrowsFiveTimesASecond()
    {
        SpeechTimeline line;
        QSignalSpy grown(&line, &SpeechTimeline::dataChanged);
        for (qint64 now = 1000; now <= 2000; now += 20)
            line.heard(1, u"ZBAA_TWR"_qs, false, now);
        QCOMPARE(grown.size(), 5);
    }

    void anotherBarBegins_data()
    {
        QTest::addColumn<Speech>("next");
        QTest::addColumn<bool>("isAnother");
        QTest::newRow("the same") << Speech{1, u"ONE"_qs, false, 1600, 1600} << false;
        QTest::newRow("after a break") << Speech{1, u"ONE"_qs, false, 1601, 1601} << true;
        QTest::newRow("on the other radio") << Speech{2, u"ONE"_qs, false, 1020, 1020} << true;
        QTest::newRow("of another") << Speech{1, u"TWO"_qs, false, 1020, 1020} << true;
        QTest::newRow("of the pilot himself") << Speech{1, u"ONE"_qs, true, 1020, 1020} << true;
    }

    void anotherBarBegins()
    {
        QFETCH(Speech, next);
        QFETCH(bool, isAnother);
        SpeechTimeline line;
        line.heard(1, u"ONE"_qs, false, 1000);
        line.heard(next.radio, next.callsign, next.own, next.fromMs);
        QCOMPARE(line.rows().size(), isAnother ? 2 : 1);
        if (isAnother)
            QCOMPARE(line.rows().first(), next);
    }

    void whatEndedAMinuteBeforeGoes()
    {
        SpeechTimeline line;
        line.heard(1, u"ONE"_qs, false, 1000);
        line.heard(1, u"TWO"_qs, false, 2000);
        line.forgetOld(61'000);
        QCOMPARE(line.rows().size(), 2);
        line.forgetOld(61'001);
        QCOMPARE(line.rows(), (QList<Speech>{{1, u"TWO"_qs, false, 2000, 2000}}));
    }

    void anyNumberOfCallsignsFits()
    {
        SpeechTimeline line;
        for (int i = 0; i < 1000; ++i)
            line.heard(1, QString::number(i) + QString(1000, u'X'), false, 1000);
        QCOMPARE(line.rows().size(), 100);
        QCOMPARE(line.rows().first().callsign.size(), 20);
    }
};

TARVO_TEST(SpeechTimelineTest)
#include "SpeechTimelineTest.moc"
