#include "ui/viewmodel/TrafficPlot.h"

#include "support/Columns.h"
#include "support/OddNumbers.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QTest>

#include <cmath>

using namespace tarvo::ui;
using tarvo::test::columns;
using tarvo::test::infinite;
using tarvo::test::notANumber;

namespace {

constexpr double degreeNm = 6371.0088 / 1.852 * 3.14159265358979323846 / 180; ///< one degree of a great circle

TrafficTarget target(const char *callsign, double latitude, double longitude, double altitudeFeet = 0)
{
    return {QString::fromLatin1(callsign), u"B738"_qs, latitude, longitude, altitudeFeet, 90, 250};
}

QStringList callsigns(const QList<PlotContact> &contacts)
{
    QStringList names;
    for (const PlotContact &contact : contacts)
        names << contact.target.callsign;
    return names;
}

} // namespace

class TrafficPlotTest : public QObject
{
    Q_OBJECT

private slots:
    void stepsOfTheRange_data()
    {
        columns<int, int, int>("range", "steps", "next");
        QTest::newRow("wider") << 20 << 1 << 40;
        QTest::newRow("two wider") << 20 << 2 << 80;
        QTest::newRow("narrower") << 20 << -1 << 10;
        QTest::newRow("beyond the widest") << 160 << 9 << 320;
        QTest::newRow("beyond the narrowest") << 5 << -3 << 2;
    }

    void stepsOfTheRange()
    {
        QFETCH(int, range);
        QFETCH(int, steps);
        QTEST(steppedRange(range, steps), "next");
    }

    void distanceAndBearing_data()
    {
        columns<double, double, double, double, double, double>("fromLatitude", "fromLongitude", "toLatitude",
                                                                "toLongitude", "distanceNm", "bearing");
        QTest::newRow("same place") << 31.0 << 121.0 << 31.0 << 121.0 << 0.0 << 0.0;
        QTest::newRow("north") << 31.0 << 121.0 << 32.0 << 121.0 << degreeNm << 0.0;
        QTest::newRow("south") << 31.0 << 121.0 << 30.0 << 121.0 << degreeNm << 180.0;
        QTest::newRow("east on the equator") << 0.0 << 10.0 << 0.0 << 11.0 << degreeNm << 90.0;
        QTest::newRow("west on the equator") << 0.0 << 10.0 << 0.0 << 9.0 << degreeNm << 270.0;
        QTest::newRow("east over the date line") << 0.0 << 179.5 << 0.0 << -179.5 << degreeNm << 90.0;
        QTest::newRow("west over the date line") << 0.0 << -179.5 << 0.0 << 179.5 << degreeNm << 270.0;
        QTest::newRow("longitudes beyond a turn") << 0.0 << 370.0 << 0.0 << 11.0 << degreeNm << 90.0;
        QTest::newRow("over the north pole") << 89.5 << 0.0 << 89.5 << 180.0 << degreeNm << 0.0;
        QTest::newRow("over the south pole") << -89.5 << 0.0 << -89.5 << 180.0 << degreeNm << 180.0;
        QTest::newRow("to the pole") << 89.0 << 77.0 << 90.0 << -120.0 << degreeNm << 0.0;
        QTest::newRow("antipodes") << 0.0 << 0.0 << 0.0 << 180.0 << 180 * degreeNm << 90.0;
        // Beijing to Shanghai, by the law of cosines on the sphere.
        QTest::newRow("a long way") << 40.0801 << 116.5846 << 31.1434 << 121.8052 << 593.707 << 153.033;
    }

    void distanceAndBearing()
    {
        QFETCH(double, fromLatitude);
        QFETCH(double, fromLongitude);
        QFETCH(double, toLatitude);
        QFETCH(double, toLongitude);
        QFETCH(double, distanceNm);
        QFETCH(double, bearing);
        const double distance = greatCircleNm(fromLatitude, fromLongitude, toLatitude, toLongitude);
        QVERIFY2(std::abs(distance - distanceNm) < 0.01, qPrintable(QString::number(distance, 'f', 4)));
        const double course = initialBearing(fromLatitude, fromLongitude, toLatitude, toLongitude);
        QVERIFY(course >= 0 && course < 360);
        const double off = std::abs(std::remainder(course - bearing, 360));
        QVERIFY2(off < 0.01, qPrintable(QString::number(course, 'f', 4)));
    }

    void theShortestAndTheFarthest()
    {
        const double metres = greatCircleNm(31, 121, 31.00001, 121) * 1852;
        QVERIFY2(std::abs(metres - 1.112) < 0.001, qPrintable(QString::number(metres)));
        const double distance = greatCircleNm(-81.3, -53.4, 81.3, 126.6);
        QVERIFY2(std::abs(distance - 180 * degreeNm) < 0.01, qPrintable(QString::number(distance)));
    }

    void aHairWestOfNorthIsNorth()
    {
        const double course = initialBearing(0, 0, 10, -1e-300);
        QVERIFY(course >= 0 && course < 360);
    }

    void positions_data()
    {
        columns<double, double, bool>("latitude", "longitude", "valid");
        QTest::newRow("ordinary") << 31.1 << 121.8 << true;
        QTest::newRow("north pole") << 90.0 << 0.0 << true;
        QTest::newRow("south pole") << -90.0 << 0.0 << true;
        QTest::newRow("on the equator") << 0.0 << 1.0 << true;
        QTest::newRow("on the first meridian") << 1.0 << 0.0 << true;
        QTest::newRow("not told yet") << 0.0 << 0.0 << false;
        QTest::newRow("not told yet, with signs") << -0.0 << -0.0 << false;
        QTest::newRow("too far north") << 90.1 << 0.0 << false;
        QTest::newRow("too far south") << -90.1 << 0.0 << false;
        QTest::newRow("latitude not a number") << notANumber << 0.0 << false;
        QTest::newRow("longitude not a number") << 0.0 << notANumber << false;
        QTest::newRow("latitude infinite") << infinite << 0.0 << false;
        QTest::newRow("longitude infinite") << 0.0 << -infinite << false;
    }

    void positions()
    {
        QFETCH(double, latitude);
        QFETCH(double, longitude);
        QFETCH(bool, valid);
        QCOMPARE(isPosition(latitude, longitude), valid);
        const QList<TrafficTarget> targets{target("CES1", latitude, longitude)};
        QCOMPARE(plotTraffic({31, 121, 0}, targets, 10).size(), valid ? 1 : 0);
        QCOMPARE(plotTraffic({latitude, longitude, 0}, {target("CES1", 31, 121)}, 10).size(), valid ? 1 : 0);
    }

    void nearestFirst()
    {
        const QList<TrafficTarget> targets{target("FAR", 33, 121), target("NEAR", 31.1, 121), target("MID", 32, 121),
                                           target("ALSO", 31.1, 121)};
        QCOMPARE(callsigns(plotTraffic({31, 121, 0}, targets, 10)),
                 (QStringList{u"ALSO"_qs, u"NEAR"_qs, u"MID"_qs, u"FAR"_qs}));
        QCOMPARE(callsigns(plotTraffic({31, 121, 0}, targets, 2)), (QStringList{u"ALSO"_qs, u"NEAR"_qs}));
        QCOMPARE(plotTraffic({31, 121, 0}, targets, 0).size(), 0);
        QCOMPARE(plotTraffic({31, 121, 0}, {}, 10).size(), 0);
    }

    void theRangeHoldsNineOfTen_data()
    {
        columns<QList<double>, int>("distances", "range");
        QTest::newRow("nobody") << QList<double>() << 20;
        QTest::newRow("close") << QList<double>{1.5} << 2;
        QTest::newRow("on a ring") << QList<double>{2} << 2;
        QTest::newRow("beyond a ring") << QList<double>{2.01} << 5;
        QTest::newRow("beyond all rings") << QList<double>{900} << 320;
        QTest::newRow("one of nine is far") << QList<double>{1, 1, 1, 1, 1, 1, 1, 1, 30} << 40;
        QTest::newRow("one of ten is far") << QList<double>{1, 1, 1, 1, 1, 1, 1, 1, 1, 30} << 2;
        QTest::newRow("two of eleven are far") << QList<double>{1, 1, 1, 1, 1, 1, 1, 1, 1, 30, 60} << 40;
    }

    void theRangeHoldsNineOfTen()
    {
        QFETCH(QList<double>, distances);
        QList<PlotContact> contacts;
        for (const double distance : distances)
            contacts << PlotContact{.target = {}, .distanceNm = distance};
        QTEST(plotRange(contacts), "range");
    }

    void theHeightIsRelative()
    {
        const PlotOrigin own{31, 121, 8000};
        QCOMPARE(plotTraffic(own, {target("UP", 31.1, 121, 9200)}, 1).first().relativeAltitudeFeet, 1200.0);
        QCOMPARE(plotTraffic(own, {target("DOWN", 31.1, 121, 100)}, 1).first().relativeAltitudeFeet, -7900.0);
        QVERIFY(
            std::isnan(plotTraffic(own, {target("UNKNOWN", 31.1, 121, notANumber)}, 1).first().relativeAltitudeFeet));
        QVERIFY(std::isnan(
            plotTraffic({31, 121, notANumber}, {target("UP", 31.1, 121, 1)}, 1).first().relativeAltitudeFeet));
    }
};

TARVO_TEST(TrafficPlotTest)
#include "TrafficPlotTest.moc"
