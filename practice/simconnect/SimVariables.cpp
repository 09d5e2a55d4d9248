#include "practice/simconnect/SimVariables.h"

#include "common/Units.h"
#include "practice/flight/Atmosphere.h"

#include <QtMath>

#include <cmath>

namespace tarvo::practice {

namespace {
using S = const AircraftState &;

constexpr double standby = 1; // of the transponder
constexpr double altitudeMode = 4;

struct BodyVelocity
{
    double right = 0; ///< metres per second
    double up = 0;
    double forward = 0;
};

/// The velocity over the ground along the aeroplane's own axes.
BodyVelocity bodyVelocity(S s)
{
    const double heading = qDegreesToRadians(s.heading);
    const double pitch = qDegreesToRadians(s.pitch);
    const double bank = qDegreesToRadians(s.bank);
    const double ahead = s.northVelocity * std::cos(heading) + s.eastVelocity * std::sin(heading);
    const double right = s.eastVelocity * std::cos(heading) - s.northVelocity * std::sin(heading);
    const double lift = s.upVelocity * std::cos(pitch) - ahead * std::sin(pitch);
    return {.right = right * std::cos(bank) - lift * std::sin(bank),
            .up = right * std::sin(bank) + lift * std::cos(bank),
            .forward = ahead * std::cos(pitch) + s.upVelocity * std::sin(pitch)};
}

double zero(S)
{
    return 0;
}

double one(S)
{
    return 1;
}

double reverse(S s)
{
    return s.reverse ? 1 : 0;
}

double speedbrake(S s)
{
    return s.speedbrake;
}

// Pitch and bank deliberately have X-Plane's signs (nose up, right wing down), and so have the rates: the client takes
// the variables as they come, and the practice aeroplane is to lie in the air alike in both simulators. The real one
// counts pitch and bank the other way round.
const SimVariable variables[] = {
    {"PLANE LATITUDE", Quantity::Angle, [](S s) { return s.latitude; }},
    {"PLANE LONGITUDE", Quantity::Angle, [](S s) { return s.longitude; }},
    {"PLANE ALTITUDE", Quantity::Length, [](S s) { return s.altitudeM; }},
    {"PLANE ALT ABOVE GROUND", Quantity::Length, [](S s) { return s.heightM; }},
    {"INDICATED ALTITUDE", Quantity::Length,
     [](S s) { return pressureAltitudeFt(s.altitudeM) / common::feetPerMetre; }},
    {"PLANE PITCH DEGREES", Quantity::Angle, [](S s) { return s.pitch; }},
    {"PLANE HEADING DEGREES TRUE", Quantity::Angle, [](S s) { return s.heading; }},
    {"PLANE BANK DEGREES", Quantity::Angle, [](S s) { return s.bank; }},
    {"VELOCITY BODY X", Quantity::Speed, [](S s) { return bodyVelocity(s).right; }},
    {"VELOCITY BODY Y", Quantity::Speed, [](S s) { return bodyVelocity(s).up; }},
    {"VELOCITY BODY Z", Quantity::Speed, [](S s) { return bodyVelocity(s).forward; }},
    {"ROTATION VELOCITY BODY X", Quantity::AngularRate, [](S s) { return s.pitchRate; }},
    {"ROTATION VELOCITY BODY Y", Quantity::AngularRate, [](S s) { return s.yawRate; }},
    {"ROTATION VELOCITY BODY Z", Quantity::AngularRate, [](S s) { return s.rollRate; }},
    {"GROUND VELOCITY", Quantity::Speed, [](S s) { return s.groundSpeed(); }},
    {"GEAR STEER ANGLE:0", Quantity::Angle, [](S s) { return s.noseWheel; }},
    {"GEAR POSITION", Quantity::Ratio, [](S s) { return s.gearDown ? 1.0 : 0.0; }},
    {"GEAR HANDLE POSITION", Quantity::Number, [](S s) { return s.gearDown ? 1.0 : 0.0; }},
    {"FLAPS HANDLE PERCENT", Quantity::Ratio, [](S s) { return s.flaps; }},
    {"SPOILERS HANDLE POSITION", Quantity::Ratio, speedbrake},
    {"SPOILERS LEFT POSITION", Quantity::Ratio, speedbrake},
    {"SPOILERS RIGHT POSITION", Quantity::Ratio, speedbrake},
    {"L:A32NX_SPOILERS_HANDLE_POSITION", Quantity::Ratio, zero}, // other aircraft's own
    {"L:A32NX_SPOILERS_ARMED", Quantity::Number, zero},
    {"L:SpoilersHandle", Quantity::Ratio, zero},
    {"L:SpoilersArmed", Quantity::Number, zero},
    {"SPOILERS ARMED", Quantity::Number, [](S s) { return s.speedbrakeArmed ? 1.0 : 0.0; }},
    {"NUMBER OF ENGINES", Quantity::Number, [](S) { return 2.0; }},
    {"GENERAL ENG COMBUSTION:1", Quantity::Number, [](S s) { return s.engine1 ? 1.0 : 0.0; }},
    {"GENERAL ENG COMBUSTION:2", Quantity::Number, [](S s) { return s.engine2 ? 1.0 : 0.0; }},
    {"GENERAL ENG COMBUSTION:3", Quantity::Number, zero},
    {"GENERAL ENG COMBUSTION:4", Quantity::Number, zero},
    {"TURB ENG REVERSE NOZZLE PERCENT:1", Quantity::Ratio, reverse},
    {"TURB ENG REVERSE NOZZLE PERCENT:2", Quantity::Ratio, reverse},
    {"TURB ENG REVERSE NOZZLE PERCENT:3", Quantity::Ratio, zero},
    {"TURB ENG REVERSE NOZZLE PERCENT:4", Quantity::Ratio, zero},
    {"LIGHT BEACON", Quantity::Number, [](S s) { return s.beacon ? 1.0 : 0.0; }},
    {"LIGHT LANDING", Quantity::Number, [](S s) { return s.landingLights ? 1.0 : 0.0; }},
    {"LIGHT TAXI", Quantity::Number, [](S s) { return s.taxiLights ? 1.0 : 0.0; }},
    {"LIGHT NAV", Quantity::Number, [](S s) { return s.navLights ? 1.0 : 0.0; }},
    {"LIGHT STROBE", Quantity::Number, [](S s) { return s.strobes ? 1.0 : 0.0; }},
    {"COM ACTIVE FREQUENCY:1", Quantity::Frequency, [](S) { return 118'500.0; }},
    {"COM ACTIVE FREQUENCY:2", Quantity::Frequency, [](S) { return 121'500.0; }},
    {"COM TRANSMIT:1", Quantity::Number, one},
    {"COM TRANSMIT:2", Quantity::Number, zero},
    {"COM RECEIVE ALL", Quantity::Number, one},
    {"TRANSPONDER CODE:1", Quantity::Code, [](S) { return 2000.0; }},
    {"TRANSPONDER STATE:1", Quantity::Number, [](S s) { return s.modeC ? altitudeMode : standby; }},
    {"AVIONICS MASTER SWITCH", Quantity::Number, [](S s) { return s.avionics ? 1.0 : 0.0; }},
    {"BAROMETER PRESSURE", Quantity::Pressure, [](S) { return seaLevelInHg * hectopascalPerInHg; }},
    {"AMBIENT TEMPERATURE", Quantity::Temperature, [](S) { return 15.0; }},
    {"AMBIENT WIND VELOCITY", Quantity::Speed, zero},
    {"AMBIENT WIND DIRECTION", Quantity::Angle, zero},
    {"SIM ON GROUND", Quantity::Number, [](S s) { return s.onGround ? 1.0 : 0.0; }},
    {"PAUSE INDICATOR", Quantity::Number, zero},
    {"TITLE", Quantity::Text, nullptr},
    {"ATC ID", Quantity::Text, nullptr},
    {"AI WAYPOINT LIST", Quantity::Waypoints, nullptr},
};
} // namespace

std::span<const SimVariable> simVariables()
{
    return variables;
}

int simVariableIndex(const QByteArray &name)
{
    static const QHash<QByteArray, int> indices = [] {
        QHash<QByteArray, int> hash;
        for (const SimVariable &variable : variables)
            hash.insert(QByteArray(variable.name).toUpper(), static_cast<int>(hash.size()));
        return hash;
    }();
    return indices.value(name.toUpper(), -1);
}

void VariableWrites::write(int index, double value, const AircraftState &state)
{
    m_writes.insert(index, {value, variables[index].read(state)});
}

double VariableWrites::value(int index, const AircraftState &state) const
{
    const auto found = m_writes.constFind(index);
    return found != m_writes.constEnd() ? found->value : variables[index].read(state);
}

void VariableWrites::settle(const AircraftState &state)
{
    m_writes.removeIf([&](const std::pair<const int &, Write &> &entry) {
        return variables[entry.first].read(state) != entry.second.flightValue;
    });
}

} // namespace tarvo::practice
