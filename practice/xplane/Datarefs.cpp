#include "practice/xplane/Datarefs.h"

#include "practice/flight/Atmosphere.h"

#include <QtMath>

#include <cmath>

namespace tarvo::practice {

namespace {
using S = const AircraftState &;

float flag(bool value)
{
    return value ? 1.0F : 0.0F;
}

float number(double value)
{
    return static_cast<float>(value);
}

float nothing(S)
{
    return 0;
}

constexpr float constantOne(S)
{
    return 1;
}

/// Propeller mode of a running engine: 1 is normal, 3 reverse.
float propMode(S s)
{
    return s.reverse ? 3.0F : 1.0F;
}

// In the order of the numbers that the client gives them. Radios stand where a pilot at Beijing would have them.
const Dataref table[] = {
    {QLatin1StringView("sim/cockpit2/switches/avionics_power_on"), [](S s) { return flag(s.avionics); }},
    {QLatin1StringView("sim/cockpit2/radios/actuators/audio_com_selection"), [](S) { return 6.0F; }},
    {QLatin1StringView("sim/cockpit2/radios/actuators/audio_selection_com1"), constantOne},
    {QLatin1StringView("sim/cockpit2/radios/actuators/audio_selection_com2"), nothing},
    {QLatin1StringView("sim/cockpit2/radios/actuators/com1_frequency_hz_833"), [](S) { return 118'500.0F; }},
    {QLatin1StringView("sim/cockpit2/radios/actuators/com1_standby_frequency_hz_833"), [](S) { return 121'700.0F; }},
    {QLatin1StringView("sim/cockpit2/radios/actuators/com2_frequency_hz_833"), [](S) { return 121'500.0F; }},
    {QLatin1StringView("sim/cockpit2/radios/actuators/com2_standby_frequency_hz_833"), [](S) { return 127'600.0F; }},
    {QLatin1StringView("sim/cockpit2/radios/actuators/audio_volume_com1"), [](S) { return 0.8F; }},
    {QLatin1StringView("sim/cockpit2/radios/actuators/audio_volume_com2"), [](S) { return 0.5F; }},
    {QLatin1StringView("sim/cockpit/radios/transponder_mode"), [](S s) { return s.modeC ? 3.0F : 1.0F; }},
    {QLatin1StringView("sim/cockpit/radios/transponder_id"), nothing},
    {QLatin1StringView("sim/cockpit/radios/transponder_code"), [](S) { return 2000.0F; }},
    {QLatin1StringView("sim/cockpit2/switches/beacon_on"), [](S s) { return flag(s.beacon); }},
    {QLatin1StringView("sim/cockpit2/switches/landing_lights_on"), [](S s) { return flag(s.landingLights); }},
    {QLatin1StringView("sim/cockpit2/switches/taxi_light_on"), [](S s) { return flag(s.taxiLights); }},
    {QLatin1StringView("sim/cockpit2/switches/navigation_lights_on"), [](S s) { return flag(s.navLights); }},
    {QLatin1StringView("sim/cockpit2/switches/strobe_lights_on"), [](S s) { return flag(s.strobes); }},
    {QLatin1StringView("sim/flightmodel/position/latitude"), [](S s) { return number(s.latitude); }},
    {QLatin1StringView("sim/flightmodel/position/longitude"), [](S s) { return number(s.longitude); }},
    {QLatin1StringView("sim/flightmodel/position/elevation"), [](S s) { return number(s.altitudeM); }},
    {QLatin1StringView("sim/flightmodel/position/y_agl"), [](S s) { return number(s.heightM); }},
    {QLatin1StringView("sim/flightmodel2/position/pressure_altitude"),
     [](S s) { return number(pressureAltitudeFt(s.altitudeM)); }},
    {QLatin1StringView("sim/weather/barometer_sealevel_inhg"), [](S) { return number(seaLevelInHg); }},
    {QLatin1StringView("sim/weather/aircraft/altimeter_temperature_error"), nothing},
    {QLatin1StringView("sim/flightmodel/position/groundspeed"), [](S s) { return number(s.groundSpeed()); }},
    {QLatin1StringView("sim/flightmodel/position/theta"), [](S s) { return number(s.pitch); }},
    {QLatin1StringView("sim/flightmodel/position/psi"), [](S s) { return number(s.heading); }},
    {QLatin1StringView("sim/flightmodel/position/phi"), [](S s) { return number(s.bank); }},
    {QLatin1StringView("sim/flightmodel/position/local_vz"), [](S s) { return number(-s.northVelocity); }}, // south
    {QLatin1StringView("sim/flightmodel/position/local_vy"), [](S s) { return number(s.upVelocity); }},
    {QLatin1StringView("sim/flightmodel/position/local_vx"), [](S s) { return number(s.eastVelocity); }},
    {QLatin1StringView("sim/flightmodel/position/Qrad"), [](S s) { return number(s.pitchRate); }},
    {QLatin1StringView("sim/flightmodel/position/Rrad"), [](S s) { return number(s.yawRate); }},
    {QLatin1StringView("sim/flightmodel/position/Prad"), [](S s) { return number(s.rollRate); }},
    {QLatin1StringView("sim/aircraft/engine/acf_num_engines"), [](S) { return 2.0F; }},
    {QLatin1StringView("sim/flightmodel/engine/ENGN_running[0]"), [](S s) { return flag(s.engine1); }},
    {QLatin1StringView("sim/flightmodel/engine/ENGN_running[1]"), [](S s) { return flag(s.engine2); }},
    {QLatin1StringView("sim/flightmodel/engine/ENGN_running[2]"), nothing},
    {QLatin1StringView("sim/flightmodel/engine/ENGN_running[3]"), nothing},
    {QLatin1StringView("sim/flightmodel/engine/ENGN_propmode[0]"), propMode},
    {QLatin1StringView("sim/flightmodel/engine/ENGN_propmode[1]"), propMode},
    {QLatin1StringView("sim/flightmodel/engine/ENGN_propmode[2]"), nothing},
    {QLatin1StringView("sim/flightmodel/engine/ENGN_propmode[3]"), nothing},
    {QLatin1StringView("sim/flightmodel/failures/onground_any"), [](S s) { return flag(s.onGround); }},
    {QLatin1StringView("sim/cockpit/switches/gear_handle_status"), [](S s) { return flag(s.gearDown); }},
    {QLatin1StringView("sim/flightmodel/controls/flaprat"), [](S s) { return number(s.flaps); }},
    {QLatin1StringView("sim/cockpit2/controls/speedbrake_ratio"), [](S s) { return number(s.speedbrake); }},
    {QLatin1StringView("sim/cockpit2/annunciators/speedbrake_armed"), [](S s) { return flag(s.speedbrakeArmed); }},
    {QLatin1StringView("sim/flightmodel2/gear/tire_steer_actual_deg[0]"), [](S s) { return number(s.noseWheel); }},
    {QLatin1StringView("sim/operation/prefs/replay_mode"), nothing},
    {QLatin1StringView("sim/time/paused"), nothing},
    {QLatin1StringView("sim/version/xplane_internal_version"), [](S) { return 121'200.0F; }},
};
} // namespace

std::span<const Dataref> datarefs()
{
    return table;
}

int datarefIndex(QStringView name)
{
    static const QHash<QString, int> indices = [] {
        QHash<QString, int> hash;
        for (const Dataref &dataref : table)
            hash.insert(dataref.name, static_cast<int>(hash.size()));
        return hash;
    }();
    return indices.value(name.toString(), -1);
}

void DatarefWrites::write(int index, float value, const AircraftState &state)
{
    if (std::isfinite(value))
        m_writes.insert(index, {value, table[index].read(state)});
}

float DatarefWrites::value(int index, const AircraftState &state) const
{
    const auto found = m_writes.constFind(index);
    return found != m_writes.constEnd() ? found->value : table[index].read(state);
}

void DatarefWrites::settle(const AircraftState &state)
{
    m_writes.removeIf([&](const std::pair<const int &, Write &> &entry) {
        return table[entry.first].read(state) != entry.second.flightValue;
    });
}

} // namespace tarvo::practice
