#include "practice/flight/Flight.h"
#include "practice/flight/Patterns.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <cmath>

using namespace tarvo::practice;

using PatternOf = const Pattern &(*)();
Q_DECLARE_METATYPE(PatternOf)

class PatternTest : public QObject
{
    Q_OBJECT

    static constexpr double step = 0.02; // seconds
    static constexpr double metresPerDegree = 111'194.9;

    static double metresBetween(const AircraftState &a, const AircraftState &b)
    {
        return std::hypot((b.latitude - a.latitude) * metresPerDegree,
                          (b.longitude - a.longitude) * metresPerDegree * std::cos(qDegreesToRadians(40.07)));
    }

private slots:
    void nobodyJumps_data()
    {
        QTest::addColumn<PatternOf>("pattern");
        QTest::addColumn<double>("fastest"); // metres per second
        QTest::addColumn<double>("lowest");  // metres above the field
        QTest::addColumn<double>("highest");
        QTest::addColumn<double>("steepest"); // degrees of bank
        QTest::newRow("at home") << &homeCircuit << 100.0 << -0.01 << 470.0 << 30.0;
        QTest::newRow("over the west runway") << &westCircuit << 95.0 << 50.0 << 315.0 << 30.0;
        QTest::newRow("taxi") << &apronTaxi << 9.2 << -0.01 << 0.01 << 0.1;
        QTest::newRow("holding point") << &holdingPoint << 0.001 << -0.01 << 0.01 << 0.1;
        QTest::newRow("racetrack") << &racetrack << 126.0 << 1500.0 << 2460.0 << 25.0;
    }

    void nobodyJumps()
    {
        QFETCH(PatternOf, pattern);
        QFETCH(double, fastest);
        QFETCH(double, lowest);
        QFETCH(double, highest);
        QFETCH(double, steepest);
        const Flight flight(pattern());
        AircraftState last = flight.at(-step);
        for (double time = 0; time < flight.duration() + 1; time += step) {
            const AircraftState now = flight.at(time);
            const QByteArray when = QByteArray::number(time);
            QVERIFY2(now.groundSpeed() <= fastest, when);
            QVERIFY2(now.heightM >= lowest && now.heightM <= highest, when);
            QVERIFY2(std::abs(now.bank) <= steepest, when);
            QVERIFY2(std::abs(metresBetween(last, now) / step - (last.groundSpeed() + now.groundSpeed()) / 2) < 0.5,
                     when);
            QVERIFY2(std::abs((now.heightM - last.heightM) / step - (last.upVelocity + now.upVelocity) / 2) < 0.2,
                     when);
            QVERIFY2(std::abs(std::remainder(now.heading - last.heading, 360.0)) < 1, when);
            last = now;
        }
    }

    void theyAreOutOfEachOthersWay()
    {
        const Flight home(homeCircuit());
        const Flight west(westCircuit());
        const Flight taxi(apronTaxi());
        const Flight holding(holdingPoint());
        const AircraftState stands = holding.at(0);
        for (double time = 0; time < home.duration(); time += 1) {
            QVERIFY(metresBetween(home.at(time), stands) > 60);
            QVERIFY(metresBetween(home.at(time), taxi.at(time)) > 100);
            QVERIFY(metresBetween(taxi.at(time), stands) > 100);
        }
        // Nobody knows when the pilot at home takes off.
        for (double homeTime = 0; homeTime < home.duration(); homeTime += 2) {
            const AircraftState one = home.at(homeTime);
            for (double westTime = 0; westTime < west.duration(); westTime += 2) {
                const AircraftState other = west.at(westTime);
                QVERIFY(std::hypot(metresBetween(one, other), one.heightM - other.heightM) > 90);
            }
        }
    }

    void phases_data()
    {
        QTest::addColumn<PatternOf>("pattern");
        QTest::addColumn<QString>("phase");
        QTest::addColumn<bool>("there");
        QTest::newRow("taxi holds") << &apronTaxi << QStringLiteral("hold") << true;
        QTest::newRow("taxi") << &apronTaxi << QStringLiteral("taxi") << true;
        QTest::newRow("holding") << &holdingPoint << QStringLiteral("holding") << true;
        QTest::newRow("climb") << &racetrack << QStringLiteral("climb") << true;
        QTest::newRow("descent") << &racetrack << QStringLiteral("descent") << true;
        QTest::newRow("downwind") << &westCircuit << QStringLiteral("downwind") << true;
        QTest::newRow("none") << &racetrack << QStringLiteral("downwind") << false;
    }

    void phases()
    {
        QFETCH(PatternOf, pattern);
        QFETCH(QString, phase);
        QFETCH(bool, there);
        const Flight flight(pattern());
        const double start = flight.startOf(phase);
        QCOMPARE(start >= 0, there);
        if (there)
            QCOMPARE(flight.phaseAt(start), phase);
    }
};

TARVO_TEST(PatternTest)
#include "PatternTest.moc"
