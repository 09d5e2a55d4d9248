#include "manager/RequestPace.h"
#include "support/TestRegistry.h"

#include <QTest>

using tarvo::manager::RequestPace;

/// How often the same is asked about a callsign.
class RequestPaceTest : public QObject
{
    Q_OBJECT

private slots:
    void eachCallsignIsDueOnceInAnInterval()
    {
        RequestPace pace(5000);
        QVERIFY(pace.isDue(u"AB2"_qs, 0));
        pace.note(u"AB2"_qs, 0);
        QVERIFY(!pace.isDue(u"AB2"_qs, 4999));
        QVERIFY(pace.isDue(u"AB3"_qs, 0));
        QVERIFY(pace.isDue(u"AB2"_qs, 5000));
        pace.note(u"AB2"_qs, 5000);
        QVERIFY(!pace.isDue(u"AB2"_qs, 9999));
        pace.clear();
        QVERIFY(pace.isDue(u"AB2"_qs, 9999));
    }

    void aCallsignBeyondMeasureIsNeverDue() { QVERIFY(!RequestPace(5000).isDue(QString(40, u'A'), 0)); }

    void inventedCallsignsFillNothing()
    {
        RequestPace pace(5000);
        const auto callsign = [](qsizetype i) { return u"X%1"_qs.arg(i); };
        for (qsizetype i = 0; i < RequestPace::maximumCallsigns; ++i)
            pace.note(callsign(i), 10'000);
        QVERIFY(!pace.isDue(u"NEW"_qs, 10'000));
        QVERIFY(!pace.isDue(u"NEW"_qs, 14'999));
        pace.note(u"NEW"_qs, 14'999); // not kept
        QVERIFY(pace.isDue(u"NEW"_qs, 15'000));
        pace.note(u"NEW"_qs, 15'000);
        QVERIFY(!pace.isDue(u"NEW"_qs, 15'001));
    }
};

TARVO_TEST(RequestPaceTest)
#include "RequestPaceTest.moc"
