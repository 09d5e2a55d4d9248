#include "ui/DurationText.h"

#include "support/TestRegistry.h"

#include <QDateTime>
#include <QTest>

using namespace tarvo::ui;

class DurationTextTest : public QObject
{
    Q_OBJECT

private slots:
    void duration_data()
    {
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("none: minutes are not padded") << qint64(0) << u"0小时 0分"_qs;
        QTest::newRow("less than a minute") << qint64(59) << u"0小时 00分"_qs;
        QTest::newRow("one minute") << qint64(60) << u"0小时 01分"_qs;
        QTest::newRow("seconds are dropped") << qint64(3599) << u"0小时 59分"_qs;
        QTest::newRow("one hour") << qint64(3600) << u"1小时 00分"_qs;
        QTest::newRow("two digits of minutes") << qint64(2 * 3600 + 45 * 60) << u"2小时 45分"_qs;
        QTest::newRow("many hours") << qint64(1234) * 3600 << u"1234小时 00分"_qs;
        QTest::newRow("beyond 32 bits") << qint64(3'000'000) * 3600 + 300 << u"3000000小时 05分"_qs;
        QTest::newRow("nonsense from outside") << qint64(-5) << u"0小时 0分"_qs;
    }
    void duration()
    {
        QFETCH(qint64, seconds);
        QTEST(durationText(seconds), "text");
    }

    void flightTime_data()
    {
        const QDateTime start(QDate(2026, 3, 9), QTime(8, 5), Qt::LocalTime);
        const QDateTime end(QDate(2026, 3, 9), QTime(10, 40), Qt::LocalTime);
        QTest::addColumn<QDateTime>("start");
        QTest::addColumn<QDateTime>("end");
        QTest::addColumn<QString>("text");
        QTest::newRow("both ends") << start << end << u"03-09 08:05 - 10:40"_qs;
        QTest::newRow("given in UTC, shown in local time") << start.toUTC() << end.toUTC() << u"03-09 08:05 - 10:40"_qs;
        QTest::newRow("no start") << QDateTime() << end << u"时间未知"_qs;
        QTest::newRow("no end") << start << QDateTime() << u"时间未知"_qs;
        QTest::newRow("neither") << QDateTime() << QDateTime() << u"时间未知"_qs;
    }
    void flightTime()
    {
        QFETCH(QDateTime, start);
        QFETCH(QDateTime, end);
        QTEST(flightTimeText(start, end), "text");
    }
};

TARVO_TEST(DurationTextTest)
#include "DurationTextTest.moc"
