#include "simulator/msfs/RemoteRules.h"
#include "model/RemoteAircraft.h"
#include "model/VelocityVector.h"
#include "simulator/msfs/session/SimConnectSession.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <cmath>
#include <optional>

using namespace tarvo::simulator::msfs;
using tarvo::model::RemoteAircraft;
using tarvo::model::VelocityVector;
using tarvo::test::columns;

class RemoteRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void onGround_data()
    {
        using Flag = std::optional<bool>;
        columns<std::optional<bool>, double, double, bool>("told", "knots", "metres", "onGround");
        QTest::newRow("told so") << Flag(true) << 0.0 << 0.0 << true;
        QTest::newRow("told so at 79 knots and 5 m") << Flag(true) << 79.0 << 5.0 << true;
        QTest::newRow("told so at 85 knots") << Flag(true) << 85.0 << 0.0 << false;
        QTest::newRow("told so at 80 knots") << Flag(true) << 80.0 << 0.0 << false;
        QTest::newRow("told so at 79.9 knots and 19.9 m") << Flag(true) << 79.9 << 19.9 << true;
        QTest::newRow("told so at 20 m") << Flag(true) << 0.0 << 20.0 << false;
        QTest::newRow("told not, standing") << Flag(false) << 0.0 << 0.0 << false;
        QTest::newRow("told nothing at 1 m") << Flag() << 0.0 << 1.0 << true;
        QTest::newRow("told nothing at 1 m and 140 knots") << Flag() << 140.0 << 1.0 << true;
        QTest::newRow("told nothing above 1 m") << Flag() << 0.0 << 1.01 << false;
        QTest::newRow("told nothing below ground") << Flag() << 0.0 << -3.0 << true;
    }

    void onGround()
    {
        QFETCH(std::optional<bool>, told);
        QFETCH(double, knots);
        QFETCH(double, metres);
        RemoteAircraft aircraft;
        aircraft.hasConfiguration = true;
        aircraft.configuration.onGround = told;
        aircraft.groundSpeed = knots;
        aircraft.visualState.altitudeAglM = metres;
        QTEST(isOnGround(aircraft), "onGround");
    }

    void aFlagWithoutConfigurationCountsNothing()
    {
        RemoteAircraft aircraft;
        aircraft.configuration.onGround = true;
        aircraft.visualState.altitudeAglM = 5;
        QVERIFY(!isOnGround(aircraft));
    }

    void speed_data()
    {
        columns<double, double, double, double, double>("east", "up", "north", "last", "knots");
        QTest::newRow("10 m/s east") << 10.0 << 0.0 << 0.0 << 0.0 << 19.43844;
        QTest::newRow("10 m/s west") << -10.0 << 0.0 << 0.0 << 0.0 << 19.43844;
        QTest::newRow("north-east") << 3.0 << 0.0 << 4.0 << 0.0 << 9.71922;
        QTest::newRow("climbing doesn't count") << 3.0 << 20.0 << 4.0 << 0.0 << 9.71922;
        QTest::newRow("just above standstill") << 0.051 << 0.0 << 0.0 << 5.0 << 0.051 * 1.943844;
        QTest::newRow("standstill, was slow") << 0.01 << 0.0 << 0.0 << 0.05 << 0.0;
        QTest::newRow("standstill, was at 0.1") << 0.05 << 0.05 << 0.0 << 0.1 << 0.0;
        QTest::newRow("standstill, was fast") << 0.01 << 0.0 << 0.0 << 5.0 << 5.0;
        QTest::newRow("rising, was slow") << 0.01 << 0.06 << 0.0 << 0.05 << 0.05;
        QTest::newRow("sinking, was slow") << 0.01 << -0.06 << 0.0 << 0.05 << 0.05;
        QTest::newRow("600 m/s") << 600.0 << 0.0 << 0.0 << 0.0 << 900.0;
    }

    void speed()
    {
        QFETCH(double, east);
        QFETCH(double, up);
        QFETCH(double, north);
        QFETCH(double, last);
        QTEST(groundSpeedAfter(VelocityVector{east, up, north}, last), "knots");
    }

    void metresBecomeFeet()
    {
        RemoteAircraft aircraft;
        aircraft.visualState = {.latitude = 40.1,
                                .longitude = 116.6,
                                .altitudeMslM = 1000,
                                .altitudeAglM = 900,
                                .pitch = -2,
                                .heading = 271,
                                .bank = 5,
                                .noseWheelAngle = 0};
        aircraft.groundSpeed = 250;
        const RemotePosition expected{.latitude = 40.1,
                                      .longitude = 116.6,
                                      .altitudeFeet = 3280.84,
                                      .pitch = -2,
                                      .bank = 5,
                                      .heading = 271,
                                      .onGround = false,
                                      .speedKnots = 250};
        QCOMPARE(positionOf(aircraft), expected);
    }

    void airline_data()
    {
        columns<QString, QString>("callsign", "airline");
        const auto add = [](const char *callsign, const char *airline) {
            QTest::newRow(callsign) << QString::fromLatin1(callsign) << QString::fromLatin1(airline);
        };
        add("CSN1234", "CSN");
        add(" csn1234 ", "CSN");
        add("CSN1234A", "CSN");
        add("CSN1", "CSN");
        add("CSN", "");
        add("CSNA12", "");
        add("N123AB", "");
        add("CS1234", "");
        add("BABC123", "");
        add("", "");
    }

    void airline()
    {
        QFETCH(QString, callsign);
        QTEST(callsignAirline(callsign), "airline");
    }

    void distance_data()
    {
        columns<double, double, double, double, double>("latitude1", "longitude1", "latitude2", "longitude2", "metres");
        constexpr double degree = 6371000 * 3.14159265358979 / 180;
        QTest::newRow("same place") << 40.0 << 116.0 << 40.0 << 116.0 << 0.0;
        QTest::newRow("one degree north") << 40.0 << 116.0 << 41.0 << 116.0 << degree;
        QTest::newRow("one degree along the equator") << 0.0 << 10.0 << 0.0 << 11.0 << degree;
        QTest::newRow("across the date line") << 0.0 << 179.5 << 0.0 << -179.5 << degree;
        QTest::newRow("the other side of the earth") << 0.0 << 0.0 << 0.0 << 180.0 << 180 * degree;
        QTest::newRow("from pole to pole") << 90.0 << 0.0 << -90.0 << 77.0 << 180 * degree;
    }

    void distance()
    {
        QFETCH(double, latitude1);
        QFETCH(double, longitude1);
        QFETCH(double, latitude2);
        QFETCH(double, longitude2);
        QFETCH(double, metres);
        QVERIFY(std::abs(distanceMetres(latitude1, longitude1, latitude2, longitude2) - metres) < 0.01);
    }
};

TARVO_TEST(RemoteRulesTest)
#include "RemoteRulesTest.moc"
