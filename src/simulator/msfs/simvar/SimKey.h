#pragma once

#include <QtGlobal>

namespace tarvo::simulator::msfs {

/// What the client reads from the simulator or writes to it; the rows of the table of simulation variables, in its
/// order. The name with a small first letter is the row's key in the map of a sample.
enum class SimKey : quint16
{
    Latitude,
    Longitude,
    AltitudeMslM,
    AircraftTitle,
    AltitudeAglM,
    AltitudePressure,
    Pitch,
    Heading,
    Bank,
    LatitudeVelocity,
    LongitudeVelocity,
    AltitudeVelocity,
    PitchVelocity,
    HeadingVelocity,
    BankVelocity,
    GroundSpeed,
    NoseWheelAngle,
    GearDown,
    GearHandlePosition,
    FlapsRatio,
    SpeedbrakeRatio,
    SpeedbrakeLeftPosition,
    SpeedbrakeRightPosition,
    SpeedbrakeHandlePositionRaw,
    SpeedbrakeLeftPositionRaw,
    SpeedbrakeRightPositionRaw,
    AirbusSpeedbrakeHandlePosition,
    AirbusSpeedbrakeArmed,
    IniSpeedbrakeHandle,
    IniSpeedbrakeArmed,
    SpeedbrakeArmed,
    EngineCount,
    Engine1Running,
    Engine2Running,
    Engine3Running,
    Engine4Running,
    Engine1Reversing,
    Engine2Reversing,
    Engine3Reversing,
    Engine4Reversing,
    BeaconOn,
    LandingLightsOn,
    TaxiLightsOn,
    NavLightsOn,
    StrobesOn,
    Com1Frequency,
    Com2Frequency,
    Com1TransmitEnabled,
    Com2TransmitEnabled,
    Com1ReceiveEnabled,
    TransponderCode,
    SquawkingModeC,
    AvionicsPowerOn,
    Qnh,
    Temperature,
    WindSpeed,
    WindDirection,
    OnGround,
    SimPaused,
};

/// The events that the client sends to the simulator.
enum class CommandKey : quint16
{
    TransponderIdent,
    Com1Frequency,
    Com2Frequency,
};

} // namespace tarvo::simulator::msfs
