#include "manager/SimulatorDataWatch.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>

using tarvo::manager::isLive;
using tarvo::manager::SimulatorDataWatch;
using tarvo::model::UserAircraftData;
using Field = double UserAircraftData::*;

namespace {
const UserAircraftData live{.latitude = 40.0};
constexpr qint64 start = 1'000'000;
} // namespace

class SimulatorDataWatchTest : public QObject
{
    Q_OBJECT

private slots:
    void liveness_data()
    {
        QTest::addColumn<int>("field");
        QTest::addColumn<double>("value");
        QTest::addColumn<bool>("expected");
        const struct
        {
            const char *name;
            double limit;
        } fields[] = {{"ground speed", 0.1},         {"altitude", 0.1},
                      {"latitude velocity", 0.0001}, {"longitude velocity", 0.0001},
                      {"altitude velocity", 0.0001}, {"latitude", 0.000001},
                      {"longitude", 0.000001}};
        int index = 0;
        for (const auto &field : fields) {
            QTest::addRow("%s at its limit", field.name) << index << field.limit << false;
            QTest::addRow("%s above", field.name) << index << field.limit * 1.01 << true;
            QTest::addRow("%s below zero", field.name) << index << -field.limit * 1.01 << true;
            ++index;
        }
        QTest::newRow("not a number") << 0 << std::numeric_limits<double>::quiet_NaN() << false;
    }

    void liveness()
    {
        constexpr Field fields[] = {&UserAircraftData::groundSpeed,      &UserAircraftData::altitudeMslM,
                                    &UserAircraftData::latitudeVelocity, &UserAircraftData::longitudeVelocity,
                                    &UserAircraftData::altitudeVelocity, &UserAircraftData::latitude,
                                    &UserAircraftData::longitude};
        QFETCH(int, field);
        QFETCH(double, value);
        UserAircraftData data;
        data.*fields[field] = value;
        QTEST(isLive(data), "expected");
    }

    void otherFieldsDontMakeASampleLive()
    {
        const UserAircraftData data{.altitudeAglM = 5, .qnh = 1013, .pitch = 3, .heading = 90, .pitchVelocity = 1};
        QVERIFY(!isLive(data));
    }

    void theThirdLiveSampleCounts()
    {
        SimulatorDataWatch watch;
        QVERIFY(!watch.addSample(live, start));
        QVERIFY(!watch.addSample({}, start)); // not live
        QVERIFY(!watch.addSample(live, start));
        QVERIFY(!watch.isValid());
        QVERIFY(watch.addSample(live, start + 7));
        QVERIFY(watch.isValid() && watch.isReadyForPilot());
        QVERIFY(!watch.addSample(live, start + 8)); // told once
    }

    void zeroSamplesLeaveItInvalid()
    {
        SimulatorDataWatch watch;
        watch.simulatorDisconnected();
        for (int i = 0; i < 10; ++i)
            QVERIFY(!watch.addSample({}, start));
        QVERIFY(!watch.isValid());
    }

    void aConnectedSimulatorIsValidButNotReady()
    {
        SimulatorDataWatch watch;
        watch.addSample(live, start);
        watch.simulatorConnected();
        QVERIFY(watch.isValid());
        QVERIFY(!watch.isReadyForPilot());
        QVERIFY(!watch.addSample(live, start + 1)); // valid already
        QVERIFY(watch.isReadyForPilot());
    }

    void withoutALiveSampleNothingExpires()
    {
        SimulatorDataWatch watch;
        watch.simulatorConnected();
        QVERIFY(!watch.expire(start + 1'000'000));
        QVERIFY(watch.isValid());
    }

    void disconnectedForgetsEverything()
    {
        SimulatorDataWatch watch;
        for (int i = 0; i < 3; ++i)
            watch.addSample(live, start);
        watch.simulatorDisconnected();
        QVERIFY(!watch.isValid());
        QVERIFY(!watch.addSample(live, start)); // counts from the start again
    }

    void expiry_data()
    {
        QTest::addColumn<qint64>("silence");
        QTest::addColumn<bool>("expected");
        QTest::newRow("3000 ms") << qint64(3000) << false;
        QTest::newRow("3001 ms") << qint64(3001) << true;
        QTest::newRow("clock set back") << qint64(-5000) << false;
    }

    void expiry()
    {
        QFETCH(qint64, silence);
        QFETCH(bool, expected);
        SimulatorDataWatch watch;
        for (int i = 0; i < 3; ++i)
            watch.addSample(live, start);
        QCOMPARE(watch.expire(start + silence), expected);
        QCOMPARE(watch.isValid(), !expected);
        QVERIFY(!watch.expire(start + silence)); // told once
    }

    void aPauseKeepsAliveWhatIsAlive()
    {
        SimulatorDataWatch watch;
        watch.simulatorConnected();
        watch.keepAlive(start); // no live sample has come
        QVERIFY(!watch.isReadyForPilot());
        watch.addSample(live, start);
        watch.keepAlive(start + 60'000);
        QVERIFY(!watch.expire(start + 63'000));
        QVERIFY(watch.expire(start + 63'001));
        watch.keepAlive(start + 70'000); // too late
        QVERIFY(!watch.isValid());
    }

    void afterExpiryThreeSamplesAreNeededAgain()
    {
        SimulatorDataWatch watch;
        for (int i = 0; i < 3; ++i)
            watch.addSample(live, start);
        QVERIFY(watch.expire(start + 3001));
        QVERIFY(!watch.addSample(live, start + 4000));
        QVERIFY(!watch.addSample(live, start + 4001));
        QVERIFY(watch.addSample(live, start + 4002));
    }
};

TARVO_TEST(SimulatorDataWatchTest)
#include "SimulatorDataWatchTest.moc"
