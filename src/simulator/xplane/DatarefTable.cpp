#include "simulator/xplane/DatarefTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace tarvo::simulator::xplane {

namespace {

constexpr double hectopascalPerInchOfMercury = 33.8639;
constexpr double knotsPerMetrePerSecond = 1.94384;

// Values of the audio panel's transmit selector.
constexpr float transmitOnCom1 = 6;
constexpr float transmitOnCom2 = 7;

constexpr float transponderModeC = 3;
constexpr float propellerReversing = 3;

constexpr float northPole = 90;
constexpr float dateLine = 180;
constexpr float largestCode = 9999;

/// Only small values are cut: the largest one that a row believes fits every type.
template <class Integer>
Integer truncated(float value)
{
    constexpr auto least = static_cast<float>(std::numeric_limits<Integer>::min());
    return static_cast<Integer>(std::max(value, least));
}

quint32 volumePercent(float value)
{
    return static_cast<quint32>(std::round(std::clamp(static_cast<double>(value) * 100.0, 0.0, 100.0)));
}

DatarefEvent applyTransmitSelection(DatarefSample &sample, float value)
{
    if (value == transmitOnCom1 || value == transmitOnCom2) {
        sample.radio.com1TransmitEnabled = value == transmitOnCom1;
        sample.radio.com2TransmitEnabled = value == transmitOnCom2;
    }
    return DatarefEvent::None;
}

DatarefEvent applyReplayMode(DatarefSample &, float value)
{
    return value > 0 ? DatarefEvent::ReplayMode : DatarefEvent::None;
}

DatarefEvent applyPaused(DatarefSample &sample, float value)
{
    const bool paused = value != 0;
    if (paused == sample.paused)
        return DatarefEvent::None;
    sample.paused = paused;
    return DatarefEvent::PausedChanged;
}

DatarefEvent applyVersion(DatarefSample &sample, float value)
{
    const int version = truncated<int>(value);
    if (version == 0 || version == sample.version)
        return DatarefEvent::None;
    sample.version = version;
    return DatarefEvent::VersionChanged;
}

// Shapes of the rows that only store a value.

template <auto Record, auto Field>
DatarefEvent flag(DatarefSample &sample, float value)
{
    sample.*Record.*Field = value != 0;
    return DatarefEvent::None;
}

template <auto Record, auto Field>
DatarefEvent number(DatarefSample &sample, float value)
{
    sample.*Record.*Field = static_cast<double>(value);
    return DatarefEvent::None;
}

/// X-Plane counts south, and two of the rotations, the other way round.
template <auto Field>
DatarefEvent negated(DatarefSample &sample, float value)
{
    sample.user.*Field = -static_cast<double>(value);
    return DatarefEvent::None;
}

template <auto Field>
DatarefEvent kilohertz(DatarefSample &sample, float value)
{
    sample.radio.*Field = truncated<quint32>(value);
    return DatarefEvent::None;
}

template <auto Field>
DatarefEvent volume(DatarefSample &sample, float value)
{
    sample.radio.*Field = volumePercent(value);
    return DatarefEvent::None;
}

template <auto Field>
DatarefEvent reversing(DatarefSample &sample, float value)
{
    sample.config.*Field = value == propellerReversing;
    return DatarefEvent::None;
}

using Config = model::UserAircraftConfigData;
using Radio = model::RadioStackState;
using Sample = DatarefSample;
using User = model::UserAircraftData;

constexpr auto user = &Sample::user;
constexpr auto config = &Sample::config;
constexpr auto radio = &Sample::radio;

// The row's place is its id on the wire: append only.
constexpr std::array<Dataref, 53> table{{
    {"sim/cockpit2/switches/avionics_power_on", 1, flag<radio, &Radio::avionicsPowerOn>},
    {"sim/cockpit2/radios/actuators/audio_com_selection", 2, applyTransmitSelection},
    {"sim/cockpit2/radios/actuators/audio_selection_com1", 2, flag<radio, &Radio::com1ReceiveEnabled>},
    {"sim/cockpit2/radios/actuators/audio_selection_com2", 2, flag<radio, &Radio::com2ReceiveEnabled>},
    {"sim/cockpit2/radios/actuators/com1_frequency_hz_833", 2, kilohertz<&Radio::com1Frequency>},
    {"sim/cockpit2/radios/actuators/com1_standby_frequency_hz_833", 1, kilohertz<&Radio::com1StandbyFrequency>},
    {"sim/cockpit2/radios/actuators/com2_frequency_hz_833", 2, kilohertz<&Radio::com2Frequency>},
    {"sim/cockpit2/radios/actuators/com2_standby_frequency_hz_833", 1, kilohertz<&Radio::com2StandbyFrequency>},
    {"sim/cockpit2/radios/actuators/audio_volume_com1", 1, volume<&Radio::com1Volume>},
    {"sim/cockpit2/radios/actuators/audio_volume_com2", 1, volume<&Radio::com2Volume>},
    {"sim/cockpit/radios/transponder_mode", 1,
     [](Sample &s, float v) {
         s.radio.squawkingModeC = v >= transponderModeC;
         return DatarefEvent::None;
     }},
    {"sim/cockpit/radios/transponder_id", 1, flag<radio, &Radio::squawkingIdent>},
    {"sim/cockpit/radios/transponder_code", 1,
     [](Sample &s, float v) {
         s.radio.transponderCode = truncated<quint16>(v);
         return DatarefEvent::None;
     },
     largestCode},
    {"sim/cockpit2/switches/beacon_on", 1, flag<config, &Config::beaconOn>},
    {"sim/cockpit2/switches/landing_lights_on", 1, flag<config, &Config::landingLightsOn>},
    {"sim/cockpit2/switches/taxi_light_on", 1, flag<config, &Config::taxiLightsOn>},
    {"sim/cockpit2/switches/navigation_lights_on", 1, flag<config, &Config::navLightsOn>},
    {"sim/cockpit2/switches/strobe_lights_on", 1, flag<config, &Config::strobesOn>},
    {"sim/flightmodel/position/latitude", 5, number<user, &User::latitude>, northPole},
    {"sim/flightmodel/position/longitude", 5, number<user, &User::longitude>, dateLine},
    {"sim/flightmodel/position/elevation", 5, number<user, &User::altitudeMslM>},
    {"sim/flightmodel/position/y_agl", 5, number<user, &User::altitudeAglM>},
    {"sim/flightmodel2/position/pressure_altitude", 5, number<user, &User::altitudePressure>},
    {"sim/weather/barometer_sealevel_inhg", 1,
     [](Sample &s, float v) {
         s.user.qnh = static_cast<double>(v) * hectopascalPerInchOfMercury;
         return DatarefEvent::None;
     }},
    {"sim/weather/aircraft/altimeter_temperature_error", 1, number<user, &User::temperatureError>},
    {"sim/flightmodel/position/groundspeed", 5,
     [](Sample &s, float v) {
         s.user.groundSpeed = static_cast<double>(v) * knotsPerMetrePerSecond;
         return DatarefEvent::None;
     }},
    {"sim/flightmodel/position/theta", 5, number<user, &User::pitch>},
    {"sim/flightmodel/position/psi", 5, number<user, &User::heading>},
    {"sim/flightmodel/position/phi", 5, number<user, &User::bank>},
    {"sim/flightmodel/position/local_vz", 5, negated<&User::latitudeVelocity>},
    {"sim/flightmodel/position/local_vy", 5, number<user, &User::altitudeVelocity>},
    {"sim/flightmodel/position/local_vx", 5, number<user, &User::longitudeVelocity>},
    {"sim/flightmodel/position/Qrad", 5, negated<&User::pitchVelocity>},
    {"sim/flightmodel/position/Rrad", 5, number<user, &User::headingVelocity>}, // this one is not negated
    {"sim/flightmodel/position/Prad", 5, negated<&User::bankVelocity>},
    {"sim/aircraft/engine/acf_num_engines", 1,
     [](Sample &s, float v) {
         s.config.engineCount = truncated<qint32>(v);
         return DatarefEvent::None;
     }},
    {"sim/flightmodel/engine/ENGN_running[0]", 1, flag<config, &Config::engine1Running>},
    {"sim/flightmodel/engine/ENGN_running[1]", 1, flag<config, &Config::engine2Running>},
    {"sim/flightmodel/engine/ENGN_running[2]", 1, flag<config, &Config::engine3Running>},
    {"sim/flightmodel/engine/ENGN_running[3]", 1, flag<config, &Config::engine4Running>},
    {"sim/flightmodel/engine/ENGN_propmode[0]", 1, reversing<&Config::engine1Reversing>},
    {"sim/flightmodel/engine/ENGN_propmode[1]", 1, reversing<&Config::engine2Reversing>},
    {"sim/flightmodel/engine/ENGN_propmode[2]", 1, reversing<&Config::engine3Reversing>},
    {"sim/flightmodel/engine/ENGN_propmode[3]", 1, reversing<&Config::engine4Reversing>},
    {"sim/flightmodel/failures/onground_any", 2, flag<config, &Config::onGround>},
    {"sim/cockpit/switches/gear_handle_status", 1, flag<config, &Config::gearDown>},
    {"sim/flightmodel/controls/flaprat", 5, number<config, &Config::flapsRatio>},
    {"sim/cockpit2/controls/speedbrake_ratio", 5, number<config, &Config::speedbrakeRatio>},
    {"sim/cockpit2/annunciators/speedbrake_armed", 5,
     [](Sample &s, float v) {
         s.config.speedbrakeArmed = v > 0.5F;
         return DatarefEvent::None;
     }},
    {"sim/flightmodel2/gear/tire_steer_actual_deg[0]", 15, number<user, &User::noseWheelAngle>},
    {"sim/operation/prefs/replay_mode", 1, applyReplayMode},
    {"sim/time/paused", 1, applyPaused},
    {"sim/version/xplane_internal_version", 1, applyVersion},
}};

} // namespace

std::span<const Dataref> datarefs()
{
    return table;
}

DatarefEvent applyDataref(DatarefSample &sample, quint32 id, float value)
{
    const bool isBelieved = id < table.size() && std::abs(value) <= table[id].most; // a NaN never is
    return isBelieved ? table[id].apply(sample, value) : DatarefEvent::None;
}

} // namespace tarvo::simulator::xplane
