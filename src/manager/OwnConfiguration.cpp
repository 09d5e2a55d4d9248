#include "manager/OwnConfiguration.h"

#include "manager/Truncate.h"
#include "model/AircraftConfiguration.h"
#include "model/UserAircraftConfigData.h"

namespace tarvo::manager {

namespace {

constexpr int flapsStepPct = 5;

model::AircraftConfiguration::Lights lightsOf(const model::UserAircraftConfigData &data)
{
    return {.strobeOn = data.strobesOn,
            .landingOn = data.landingLightsOn,
            .taxiOn = data.taxiLightsOn,
            .beaconOn = data.beaconOn,
            .navOn = data.navLightsOn,
            .present = true};
}

model::AircraftConfiguration::Engines enginesOf(const model::UserAircraftConfigData &data)
{
    const model::AircraftConfiguration::Engine all[] = {
        {data.engine1Running, data.engine1Reversing},
        {data.engine2Running, data.engine2Reversing},
        {data.engine3Running, data.engine3Reversing},
        {data.engine4Running, data.engine4Reversing},
    };
    model::AircraftConfiguration::Engines engines;
    engines.present = true;
    const int count = std::clamp(data.engineCount, 0, 4);
    std::copy_n(std::begin(all), count, engines.engine.begin());
    return engines;
}

} // namespace

model::AircraftConfiguration configurationOf(const model::UserAircraftConfigData &data)
{
    model::AircraftConfiguration result;
    result.lights = lightsOf(data);
    result.engines = enginesOf(data);
    result.gearDown = data.gearDown;
    // Clamped, so that no simulator can overflow it; a real ratio is far inside.
    result.flapsPct = std::clamp(truncated(data.flapsRatio * 100 / flapsStepPct), -1'000'000, 1'000'000) * flapsStepPct;
    result.spoilersOut = data.speedbrakeRatio > 0.0;
    result.onGround = data.onGround;
    return result;
}

} // namespace tarvo::manager
