#include "simulator/msfs/RemoteVisuals.h"
#include "model/AircraftConfiguration.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;
using tarvo::model::AircraftConfiguration;

namespace {

/// Everything is told, and `on`.
AircraftConfiguration fullConfiguration(bool on)
{
    AircraftConfiguration configuration;
    configuration.lights = {
        .strobeOn = on, .landingOn = on, .taxiOn = on, .beaconOn = on, .navOn = on, .present = true};
    configuration.gearDown = on;
    configuration.flapsPct = on ? 35 : 0;
    configuration.spoilersOut = on;
    configuration.onGround = on;
    return configuration;
}

} // namespace

class RemoteVisualsTest : public QObject
{
    Q_OBJECT

private slots:
    void inTheirOrder_data()
    {
        QTest::addColumn<bool>("on");
        QTest::newRow("all on") << true;
        QTest::newRow("all off") << false;
    }

    void inTheirOrder()
    {
        QFETCH(bool, on);
        const QList<Visual> expected{
            {SimKey::GearHandlePosition, on},
            {SimKey::FlapsRatio, on ? 35 : 0},
            {SimKey::SpeedbrakeRatio, on ? 1.0 : 0.0},
            {SimKey::BeaconOn, on},
            {SimKey::LandingLightsOn, on},
            {SimKey::TaxiLightsOn, on},
            {SimKey::NavLightsOn, on},
            {SimKey::StrobesOn, on},
        };
        const QList<Visual> visuals = visualsOf(fullConfiguration(on));
        QCOMPARE(visuals, expected);
        for (qsizetype i = 0; i < visuals.size(); ++i) // == takes 1 and true for the same
            QCOMPARE(visuals[i].value.typeId(), expected[i].value.typeId());
    }

    void whatIsNotToldIsLeftOut()
    {
        AircraftConfiguration configuration;
        QCOMPARE(visualsOf(configuration), {});
        configuration.flapsPct = 15;
        configuration.lights.present = true;
        configuration.lights.navOn = false;
        const QList<Visual> expected{{SimKey::FlapsRatio, 15}, {SimKey::NavLightsOn, false}};
        QCOMPARE(visualsOf(configuration), expected);
    }

    void lightsOfAnAbsentBlockAreLeftOut()
    {
        AircraftConfiguration configuration;
        configuration.lights.navOn = true;
        QCOMPARE(visualsOf(configuration), {});
    }
};

TARVO_TEST(RemoteVisualsTest)
#include "RemoteVisualsTest.moc"
