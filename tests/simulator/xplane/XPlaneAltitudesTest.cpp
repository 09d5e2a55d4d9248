#include "simulator/xplane/XPlaneAltitudes.h"
#include "model/UserAircraftData.h"
#include "simulator/Simulator.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>

using namespace tarvo::simulator::xplane;
using tarvo::model::UserAircraftData;
using tarvo::simulator::SimulatorType;
using tarvo::test::columns;

namespace {

constexpr double tenThousandFeet = 10000 / 3.28084; // metres

UserAircraftData ownAircraft(double temperatureError = 0)
{
    UserAircraftData own;
    own.altitudeMslM = tenThousandFeet;
    own.altitudePressure = 9700;
    own.qnh = 1003.25;
    own.temperatureError = temperatureError;
    return own;
}

} // namespace

class XPlaneAltitudesTest : public QObject
{
    Q_OBJECT

private slots:
    void ownAltitudes_data()
    {
        columns<int, double, double>("version", "pressure", "trueAltitude");
        QTest::newRow("unknown version") << 0 << 10000.0 << 10300.0;
        QTest::newRow("X-Plane 10") << 105100 << 10000.0 << 10300.0;
        QTest::newRow("X-Plane 11") << 115000 << 10000.0 << 10300.0;
        QTest::newRow("last before 12") << 119999 << 10000.0 << 10300.0;
        QTest::newRow("X-Plane 12") << 120000 << 10250.0 << 9700.0;
        QTest::newRow("X-Plane 12 later") << 121234 << 10250.0 << 9700.0;
    }

    void ownAltitudes()
    {
        QFETCH(int, version);
        QTEST(pressureAltitudeFeet(ownAircraft(250), version), "pressure");
        QTEST(trueAltitudeFeet(ownAircraft(250), version), "trueAltitude");
    }

    void remoteAltitude_data()
    {
        columns<int, double, double, double>("version", "error", "reported", "drawn");
        QTest::newRow("X-Plane 11: never") << 115000 << 500.0 << 10000.0 << 10000.0;
        QTest::newRow("no error") << 120000 << 0.0 << 10000.0 << 10000.0;
        QTest::newRow("same level") << 120000 << 500.0 << 10500.0 << 10000.0;
        QTest::newRow("negative error") << 120000 << -500.0 << 9500.0 << 10000.0;
        QTest::newRow("3000 apart: whole shift") << 120000 << 500.0 << 13500.0 << 13000.0;
        QTest::newRow("4500 apart: half") << 120000 << 500.0 << 15000.0 << 14750.0;
        QTest::newRow("4500 below: half") << 120000 << 500.0 << 6000.0 << 5750.0;
        QTest::newRow("4000 apart: the error counts in the distance")
            << 120000 << 500.0 << 14500.0 << 14500.0 - 500.0 * (2.0 / 3.0);
        QTest::newRow("6000 apart: none") << 120000 << 500.0 << 16500.0 << 16500.0;
        QTest::newRow("6000.1 apart: none") << 120000 << 500.0 << 16500.1 << 16500.1;
        QTest::newRow("far below: none") << 120000 << 500.0 << 0.0 << 0.0;
    }

    void remoteAltitude()
    {
        QFETCH(int, version);
        QFETCH(double, error);
        QFETCH(double, reported);
        QTEST(adjustRemoteAltitude(reported, ownAircraft(error), version), "drawn");
    }

    void withoutAnOwnAltitudeNothingIsShifted()
    {
        UserAircraftData own = ownAircraft(500);
        own.altitudeMslM = std::numeric_limits<double>::quiet_NaN();
        QCOMPARE(adjustRemoteAltitude(10000, own, 120000), 10000.0);
        own = ownAircraft(std::numeric_limits<double>::quiet_NaN());
        QCOMPARE(adjustRemoteAltitude(10000, own, 120000), 10000.0);
    }

    void typeOfVersion_data()
    {
        columns<int, int>("version", "type");
        QTest::newRow("unknown") << 0 << 0;
        QTest::newRow("negative") << -1 << 0;
        QTest::newRow("99999") << 99999 << 0;
        QTest::newRow("100000") << 100000 << 3;
        QTest::newRow("109999") << 109999 << 3;
        QTest::newRow("110000") << 110000 << 4;
        QTest::newRow("119999") << 119999 << 4;
        QTest::newRow("120000") << 120000 << 5;
        QTest::newRow("130000") << 130000 << 5;
    }

    void typeOfVersion()
    {
        QFETCH(int, version);
        QTEST(static_cast<int>(simulatorTypeOf(version)), "type");
    }
};

TARVO_TEST(XPlaneAltitudesTest)
#include "XPlaneAltitudesTest.moc"
