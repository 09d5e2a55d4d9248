#include "simulator/msfs/simvar/SimVarTable.h"

#include <QLatin1String>
#include <QTextStream>

#include <algorithm>
#include <array>
#include <utility>

namespace tarvo::simulator::msfs {

namespace {

using enum SimKey;
using enum SimVarType;
using enum SimVarConversion;
using enum UpdateGroup;

/// No row of today names something else for 2024.
constexpr SimVarDefinition row(SimKey key, UpdateGroup group, SimVarType type, const char *dataKey,
                               const char *variable, const char *unit, SimVarConversion conversion = None,
                               bool active = true)
{
    return {key, group, type, dataKey, variable, unit, "", "", conversion, active};
}

// Deliberate: the keys are tied to the variables as they are, no sign is turned and no axis swapped. The simulator
// counts pitch positive with the nose down and bank positive to the left. Its body axes are X to the right, Y up, Z
// forward, so latitudeVelocity is the speed to the right, longitudeVelocity the speed up and altitudeVelocity the speed
// forward, and not speeds along the axes of the Earth that their names tell.
constexpr std::array table{
    row(Latitude, Position, Float, "latitude", "PLANE LATITUDE", "degrees"),
    row(Longitude, Position, Float, "longitude", "PLANE LONGITUDE", "degrees"),
    row(AltitudeMslM, Position, Float, "altitudeMslM", "PLANE ALTITUDE", "meters"),
    row(AircraftTitle, Position, String, "aircraftTitle", "TITLE", "string", None, false),
    row(AltitudeAglM, Position, Float, "altitudeAglM", "PLANE ALT ABOVE GROUND", "meters"),
    row(AltitudePressure, Position, Float, "altitudePressure", "INDICATED ALTITUDE", "feet"),
    row(Pitch, Position, Float, "pitch", "PLANE PITCH DEGREES", "degrees"),
    row(Heading, Position, Float, "heading", "PLANE HEADING DEGREES TRUE", "degrees"),
    row(Bank, Position, Float, "bank", "PLANE BANK DEGREES", "degrees"),
    row(LatitudeVelocity, Position, Float, "latitudeVelocity", "VELOCITY BODY X", "meters per second"),
    row(LongitudeVelocity, Position, Float, "longitudeVelocity", "VELOCITY BODY Y", "meters per second"),
    row(AltitudeVelocity, Position, Float, "altitudeVelocity", "VELOCITY BODY Z", "meters per second"),
    row(PitchVelocity, Position, Float, "pitchVelocity", "ROTATION VELOCITY BODY X", "radians per second"),
    row(HeadingVelocity, Position, Float, "headingVelocity", "ROTATION VELOCITY BODY Y", "radians per second"),
    row(BankVelocity, Position, Float, "bankVelocity", "ROTATION VELOCITY BODY Z", "radians per second"),
    row(GroundSpeed, Position, Float, "groundSpeed", "GROUND VELOCITY", "knots"),
    row(NoseWheelAngle, Position, Float, "noseWheelAngle", "GEAR STEER ANGLE:0", "radians", RadiansToDegrees),
    row(GearDown, Aircraft, Float, "gearDown", "GEAR POSITION", "percent"),
    row(GearHandlePosition, Aircraft, Bool, "gearHandlePosition", "GEAR HANDLE POSITION", "bool", None, false),
    row(FlapsRatio, Aircraft, Float, "flapsRatio", "FLAPS HANDLE PERCENT", "percent"),
    row(SpeedbrakeRatio, Aircraft, Float, "speedbrakeRatio", "SPOILERS HANDLE POSITION", "percent over 100"),
    row(SpeedbrakeLeftPosition, Aircraft, Float, "speedbrakeLeftPosition", "SPOILERS LEFT POSITION",
        "percent over 100"),
    row(SpeedbrakeRightPosition, Aircraft, Float, "speedbrakeRightPosition", "SPOILERS RIGHT POSITION",
        "percent over 100"),
    row(SpeedbrakeHandlePositionRaw, Aircraft, Float, "speedbrakeHandlePositionRaw", "SPOILERS HANDLE POSITION",
        "position", Position16K),
    row(SpeedbrakeLeftPositionRaw, Aircraft, Float, "speedbrakeLeftPositionRaw", "SPOILERS LEFT POSITION", "position",
        Position16K),
    row(SpeedbrakeRightPositionRaw, Aircraft, Float, "speedbrakeRightPositionRaw", "SPOILERS RIGHT POSITION",
        "position", Position16K),
    row(AirbusSpeedbrakeHandlePosition, Aircraft, Float, "airbusSpeedbrakeHandlePosition",
        "L:A32NX_SPOILERS_HANDLE_POSITION", "number"),
    row(AirbusSpeedbrakeArmed, Aircraft, Bool, "airbusSpeedbrakeArmed", "L:A32NX_SPOILERS_ARMED", "bool"),
    row(IniSpeedbrakeHandle, Aircraft, Float, "iniSpeedbrakeHandle", "L:SpoilersHandle", "number", PercentOrRatio),
    row(IniSpeedbrakeArmed, Aircraft, Bool, "iniSpeedbrakeArmed", "L:SpoilersArmed", "bool"),
    row(SpeedbrakeArmed, Aircraft, Bool, "speedbrakeArmed", "SPOILERS ARMED", "bool"),
    row(EngineCount, Aircraft, Int, "engineCount", "NUMBER OF ENGINES", "number"),
    row(Engine1Running, Aircraft, Bool, "engine1Running", "GENERAL ENG COMBUSTION:1", "bool"),
    row(Engine2Running, Aircraft, Bool, "engine2Running", "GENERAL ENG COMBUSTION:2", "bool"),
    row(Engine3Running, Aircraft, Bool, "engine3Running", "GENERAL ENG COMBUSTION:3", "bool"),
    row(Engine4Running, Aircraft, Bool, "engine4Running", "GENERAL ENG COMBUSTION:4", "bool"),
    row(Engine1Reversing, Aircraft, Float, "engine1Reversing", "TURB ENG REVERSE NOZZLE PERCENT:1", "percent",
        ReverserRatio),
    row(Engine2Reversing, Aircraft, Float, "engine2Reversing", "TURB ENG REVERSE NOZZLE PERCENT:2", "percent",
        ReverserRatio),
    row(Engine3Reversing, Aircraft, Float, "engine3Reversing", "TURB ENG REVERSE NOZZLE PERCENT:3", "percent",
        ReverserRatio),
    row(Engine4Reversing, Aircraft, Float, "engine4Reversing", "TURB ENG REVERSE NOZZLE PERCENT:4", "percent",
        ReverserRatio),
    row(BeaconOn, Aircraft, Bool, "beaconOn", "LIGHT BEACON", "bool"),
    row(LandingLightsOn, Aircraft, Bool, "landingLightsOn", "LIGHT LANDING", "bool"),
    row(TaxiLightsOn, Aircraft, Bool, "taxiLightsOn", "LIGHT TAXI", "bool"),
    row(NavLightsOn, Aircraft, Bool, "navLightsOn", "LIGHT NAV", "bool"),
    row(StrobesOn, Aircraft, Bool, "strobesOn", "LIGHT STROBE", "bool"),
    row(Com1Frequency, Avionics, Float, "com1Frequency", "COM ACTIVE FREQUENCY:1", "Frequency BCD16", FrequencyBcd16),
    row(Com2Frequency, Avionics, Float, "com2Frequency", "COM ACTIVE FREQUENCY:2", "Frequency BCD16", FrequencyBcd16),
    row(Com1TransmitEnabled, Avionics, Bool, "com1TransmitEnabled", "COM TRANSMIT:1", "bool"),
    row(Com2TransmitEnabled, Avionics, Bool, "com2TransmitEnabled", "COM TRANSMIT:2", "bool"),
    row(Com1ReceiveEnabled, Avionics, Bool, "com1ReceiveEnabled", "COM RECEIVE ALL", "bool"),
    row(TransponderCode, Avionics, Int, "transponderCode", "TRANSPONDER CODE:1", "Bco16", Bco16),
    row(SquawkingModeC, Avionics, Int, "squawkingModeC", "TRANSPONDER STATE:1", "enum"),
    row(AvionicsPowerOn, Avionics, Bool, "avionicsPowerOn", "AVIONICS MASTER SWITCH", "bool"),
    row(Qnh, Environment, Float, "qnh", "BAROMETER PRESSURE", "millibars"),
    row(Temperature, Environment, Float, "temperature", "AMBIENT TEMPERATURE", "celsius"),
    row(WindSpeed, Environment, Float, "windSpeed", "AMBIENT WIND VELOCITY", "knots"),
    row(WindDirection, Environment, Float, "windDirection", "AMBIENT WIND DIRECTION", "degrees"),
    row(OnGround, Environment, Bool, "onGround", "SIM ON GROUND", "bool"),
    row(SimPaused, Environment, Bool, "simPaused", "PAUSE INDICATOR", "bool"),
};

constexpr std::array commands{
    CommandDefinition{CommandKey::TransponderIdent, "XPNDR_IDENT_ON", ""},
    CommandDefinition{CommandKey::Com1Frequency, "COM_RADIO_SET_HZ", ""},
    CommandDefinition{CommandKey::Com2Frequency, "COM2_RADIO_SET_HZ", ""},
};

constexpr bool keysAreInOrder()
{
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (static_cast<std::size_t>(table[i].key) != i)
            return false;
    }
    return true;
}
static_assert(keysAreInOrder());

const char *chosen(const char *for2020, const char *for2024, MsfsRuntimeProfile profile)
{
    return profile == MsfsRuntimeProfile::Msfs2024 && *for2024 != '\0' ? for2024 : for2020;
}

} // namespace

std::span<const SimVarDefinition> simVarDefinitions()
{
    return table;
}

std::span<const CommandDefinition> commandDefinitions()
{
    return commands;
}

SimVarBinding simVarBinding(const SimVarDefinition &definition, MsfsRuntimeProfile profile)
{
    return {.key = definition.key,
            .variable = chosen(definition.variable2020, definition.variable2024, profile),
            .unit = chosen(definition.unit2020, definition.unit2024, profile),
            .type = definition.type,
            .group = definition.group,
            .dataKey = QLatin1String(definition.dataKey),
            .conversion = definition.conversion};
}

const char *commandEvent(const CommandDefinition &definition, MsfsRuntimeProfile profile)
{
    return chosen(definition.event2020, definition.event2024, profile);
}

QList<SimVarBinding> simVarBindings(MsfsRuntimeProfile profile)
{
    QList<SimVarBinding> bindings;
    for (const SimVarDefinition &definition : table) {
        if (definition.active)
            bindings.append(simVarBinding(definition, profile));
    }
    return bindings;
}

QList<SimVarBinding> simVarBindings(UpdateGroup group, MsfsRuntimeProfile profile)
{
    QList<SimVarBinding> bindings = simVarBindings(profile);
    bindings.removeIf([group](const SimVarBinding &binding) { return binding.group != group; });
    return bindings;
}

std::optional<SimVarBinding> simVarBinding(SimKey key, MsfsRuntimeProfile profile)
{
    const auto place = static_cast<std::size_t>(key);
    if (place >= table.size())
        return std::nullopt;
    return simVarBinding(table[place], profile);
}

bool hasSimVar(SimKey key, MsfsRuntimeProfile profile)
{
    return simVarBinding(key, profile).has_value();
}

const char *commandEvent(CommandKey key, MsfsRuntimeProfile profile)
{
    const auto is = [key](const CommandDefinition &definition) { return definition.key == key; };
    const auto found = std::find_if(commands.begin(), commands.end(), is);
    return found == commands.end() ? "" : commandEvent(*found, profile);
}

QString simVarReport()
{
    QString report;
    QTextStream lines(&report);
    for (const SimVarDefinition &definition : table) {
        lines << "key=" << static_cast<int>(definition.key) << " group=" << static_cast<int>(definition.group)
              << " type=" << static_cast<int>(definition.type) << '\n';
    }
    return report;
}

} // namespace tarvo::simulator::msfs
