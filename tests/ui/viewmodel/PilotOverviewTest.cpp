#include "ui/viewmodel/PilotOverview.h"
#include "model/NearbyAtc.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using namespace tarvo::ui;
using tarvo::model::NearbyAtc;

/// The head of the overview page.
class PilotOverviewTest : public QObject
{
    Q_OBJECT

private slots:
    void stationsOfAFrequency_data()
    {
        QTest::addColumn<QStringList>("callsigns");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << QStringList() << QString();
        QTest::newRow("one") << QStringList{u"ZBAA_TWR"_qs} << u"ZBAA_TWR"_qs;
        QTest::newRow("two") << QStringList{u"A_TWR"_qs, u"B_TWR"_qs} << u"A_TWR +1"_qs;
        QTest::newRow("three") << QStringList{u"A_TWR"_qs, u"B_TWR"_qs, u"C_TWR"_qs} << u"A_TWR +2"_qs;
    }
    void stationsOfAFrequency()
    {
        QFETCH(QStringList, callsigns);
        QList<NearbyAtc> stations{{.callsign = u"ZBAA_GND"_qs, .frequency = u"121.900"_qs, .name = {}}};
        for (const QString &callsign : callsigns)
            stations.append({.callsign = callsign, .frequency = u"118.500"_qs, .name = {}});
        QTEST(stationsOn(u"118.500"_qs, stations), "text");
    }

    void timesOnline_data()
    {
        QTest::addColumn<qint64>("ms");
        QTest::addColumn<QString>("text");
        QTest::newRow("now") << 0LL << u"0 分钟"_qs;
        QTest::newRow("a clock that went back") << -5LL << u"0 分钟"_qs;
        QTest::newRow("59 s") << 59'999LL << u"0 分钟"_qs;
        QTest::newRow("a minute") << 60'000LL << u"1 分钟"_qs;
        QTest::newRow("59 minutes") << 3'599'999LL << u"59 分钟"_qs;
        QTest::newRow("an hour") << 3'600'000LL << u"1 小时 00 分"_qs;
        QTest::newRow("a day and more") << 90'300'000LL << u"25 小时 05 分"_qs;
    }
    void timesOnline()
    {
        QFETCH(qint64, ms);
        QTEST(onlineText(ms), "text");
    }

    void aFlightIsSummedUp()
    {
        const FlightSummary summary = summaryOf({.callsign = u" ces2352"_qs,
                                                 .typeCode = u"b738"_qs,
                                                 .observer = false,
                                                 .simulator = u"X-Plane"_qs,
                                                 .live = true,
                                                 .com1 = u"118.500"_qs,
                                                 .com2 = u"121.500"_qs,
                                                 .transponder = u"2145"_qs,
                                                 .connectedForMs = 120'000},
                                                {{.callsign = u"ZBAA_TWR"_qs, .frequency = u"118.500"_qs, .name = {}}});
        QCOMPARE(summary, (FlightSummary{.callsign = u"CES2352"_qs,
                                         .detail = u"B738 · X-Plane"_qs,
                                         .com1 = u"118.500"_qs,
                                         .com1Station = u"ZBAA_TWR"_qs,
                                         .com2 = u"121.500"_qs,
                                         .com2Station = {},
                                         .transponder = u"2145"_qs,
                                         .online = u"2 分钟"_qs}));
    }

    void whatIsNotKnownIsADash()
    {
        const FlightSummary summary =
            summaryOf({.callsign = {}, .typeCode = {}, .observer = true, .simulator = {}}, {});
        QCOMPARE(summary, (FlightSummary{.detail = u"观察员"_qs}));
        QCOMPARE(summary.com1, u"--"_qs);
    }

    void onlyAChangeIsTold()
    {
        PilotOverview overview;
        const QSignalSpy changed(&overview, &PilotOverview::changed);
        overview.show({});
        QCOMPARE(changed.size(), 0);
        overview.show({.callsign = u"CES2352"_qs});
        overview.show({.callsign = u"CES2352"_qs});
        QCOMPARE(changed.size(), 1);
        QCOMPARE(overview.callsign(), u"CES2352"_qs);
    }
};

TARVO_TEST(PilotOverviewTest)
#include "PilotOverviewTest.moc"
