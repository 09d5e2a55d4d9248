#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

enum class FastPilotPositionType
{
    Fast = 0,
    Slow = 1,
    Stopped = 2
};

/// A pilot's report with velocities: fast "^", slow "#SL", stopped "#ST".
/// Wire: From : latitude : longitude : true altitude : altitude above ground : packed attitude : 3 velocities : 3
///       rotations [: nose gear angle]; a stopped report has none of the six
struct FastPilotPosition : PduBase
{
    /// "^", "#SL" or "#ST".
    static QLatin1StringView identifierOf(FastPilotPositionType type);

    FastPilotPositionType type{}; ///< not on the wire as a field: it picks the identifier
    double latitude{};            ///< degrees
    double longitude{};           ///< degrees
    double trueAltitude{};        ///< feet
    double altitudeAboveGround{}; ///< feet; this client fills it with the pressure altitude
    double pitch{};               ///< degrees
    double heading{};             ///< degrees
    double bank{};                ///< degrees
    bool onGround{};
    double velocity1{};       ///< metres per second, east
    double velocity2{};       ///< metres per second, up
    double velocity3{};       ///< metres per second, north
    double pitchVelocity{};   ///< radians per second
    double headingVelocity{}; ///< radians per second
    double bankVelocity{};    ///< radians per second
    double noseGearAngle{};   ///< degrees; 0 when absent

    /// Throws PDUFormatException, "Invalid field count for FastPilotPosition command.", below 12 fields, when stopped
    /// below 6.
    static FastPilotPosition parse(const QStringList &fields, FastPilotPositionType type);
    QStringList serialize() const;

    bool operator==(const FastPilotPosition &) const = default;
};

} // namespace tarvo::fsd::pdu
