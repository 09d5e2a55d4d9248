#include "manager/OwnConfiguration.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>

using namespace tarvo::manager;
using tarvo::model::AircraftConfiguration;
using tarvo::model::UserAircraftConfigData;

class OwnConfigurationTest : public QObject
{
    Q_OBJECT

private slots:
    void lightsAreAllPresent()
    {
        const AircraftConfiguration c = configurationOf({.strobesOn = true, .taxiLightsOn = true, .navLightsOn = true});
        const AircraftConfiguration::Lights expected{
            .strobeOn = true, .landingOn = false, .taxiOn = true, .beaconOn = false, .navOn = true, .present = true};
        QCOMPARE(c.lights, expected);
        const AircraftConfiguration other = configurationOf({.landingLightsOn = true, .beaconOn = true});
        QCOMPARE(other.lights.landingOn, std::optional(true));
        QCOMPARE(other.lights.beaconOn, std::optional(true));
        QVERIFY(!c.isFullData);
    }

    void engines_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("expected");
        QTest::newRow("none") << 0 << 0;
        QTest::newRow("two") << 2 << 2;
        QTest::newRow("four") << 4 << 4;
        QTest::newRow("eight") << 8 << 4;
        QTest::newRow("negative") << -1 << 0;
    }

    void engines()
    {
        QFETCH(int, count);
        QFETCH(int, expected);
        const AircraftConfiguration c = configurationOf(
            {.engineCount = count, .engine1Running = true, .engine3Running = true, .engine2Reversing = true});
        QVERIFY(c.engines.present);
        const bool running[] = {true, false, true, false};
        const bool reversing[] = {false, true, false, false};
        for (int i = 0; i < 4; ++i) {
            const AircraftConfiguration::Engine &engine = c.engines.engine.at(static_cast<std::size_t>(i));
            QCOMPARE(engine.on, i < expected ? std::optional(running[i]) : std::nullopt);
            QCOMPARE(engine.isReversing, i < expected ? std::optional(reversing[i]) : std::nullopt);
        }
    }

    void flaps_data()
    {
        QTest::addColumn<double>("ratio");
        QTest::addColumn<int>("percent");
        QTest::newRow("up") << 0.0 << 0;
        QTest::newRow("0.57") << 0.57 << 55;
        QTest::newRow("just below a step") << 0.0499 << 0;
        QTest::newRow("a step") << 0.05 << 5;
        QTest::newRow("full") << 1.0 << 100;
        QTest::newRow("beyond") << 1.2 << 120;
        QTest::newRow("negative") << -0.07 << -5;
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 0;
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 5'000'000;
    }

    void flaps()
    {
        QFETCH(double, ratio);
        QFETCH(int, percent);
        QCOMPARE(configurationOf({.flapsRatio = ratio}).flapsPct, std::optional(percent));
    }

    void surfaces()
    {
        const AircraftConfiguration up = configurationOf({});
        QCOMPARE(up.gearDown, std::optional(false));
        QCOMPARE(up.spoilersOut, std::optional(false));
        QCOMPARE(up.onGround, std::optional(false));
        const AircraftConfiguration down =
            configurationOf({.gearDown = true, .speedbrakeRatio = 0.01, .onGround = true});
        QCOMPARE(down.gearDown, std::optional(true));
        QCOMPARE(down.spoilersOut, std::optional(true));
        QCOMPARE(down.onGround, std::optional(true));
        QCOMPARE(configurationOf({.speedbrakeArmed = true}).spoilersOut, std::optional(false));
    }

    void budgetIsTenAndNeverMore()
    {
        ConfigurationBudget budget;
        for (int i = 0; i < 3; ++i)
            budget.add();
        for (int i = 0; i < 10; ++i) {
            QVERIFY(!budget.isEmpty());
            budget.take();
        }
        QVERIFY(budget.isEmpty());
        budget.add();
        QVERIFY(!budget.isEmpty());
        budget.take();
        QVERIFY(budget.isEmpty());
    }
};

TARVO_TEST(OwnConfigurationTest)
#include "OwnConfigurationTest.moc"
