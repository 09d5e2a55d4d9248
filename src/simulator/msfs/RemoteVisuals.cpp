#include "simulator/msfs/RemoteVisuals.h"

#include "model/AircraftConfiguration.h"

#include <optional>

namespace tarvo::simulator::msfs {

using Lights = model::AircraftConfiguration::Lights;

namespace {

struct Light
{
    SimKey key;
    std::optional<bool> Lights::*on;
};

constexpr Light lights[] = {
    {SimKey::BeaconOn, &Lights::beaconOn},   {SimKey::LandingLightsOn, &Lights::landingOn},
    {SimKey::TaxiLightsOn, &Lights::taxiOn}, {SimKey::NavLightsOn, &Lights::navOn},
    {SimKey::StrobesOn, &Lights::strobeOn},
};

} // namespace

QList<Visual> visualsOf(const model::AircraftConfiguration &configuration)
{
    QList<Visual> visuals;
    if (configuration.gearDown)
        visuals.append({SimKey::GearHandlePosition, *configuration.gearDown});
    if (configuration.flapsPct)
        visuals.append({SimKey::FlapsRatio, *configuration.flapsPct});
    if (configuration.spoilersOut)
        visuals.append({SimKey::SpeedbrakeRatio, *configuration.spoilersOut ? 1.0 : 0.0});
    for (const Light &light : lights) {
        if (const std::optional<bool> on = configuration.lights.*light.on; configuration.lights.present && on)
            visuals.append({light.key, *on});
    }
    return visuals;
}

} // namespace tarvo::simulator::msfs
