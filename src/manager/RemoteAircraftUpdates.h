#pragma once

// What the messages of another pilot change in his record. Functions of their arguments alone, of which a
// TypeNormalizer remembers what it has been asked.

#include "model/VelocityVector.h"

#include <QString>

namespace tarvo::fsd::pdu {
struct FastPilotPosition;
struct PilotPosition;
struct PlaneInfoResponse;
} // namespace tarvo::fsd::pdu
namespace tarvo::model {
struct AircraftVisualState;
struct ConnectInfo;
struct RemoteAircraft;
} // namespace tarvo::model

namespace tarvo::manager {

class TypeNormalizer;

/// True for the own callsign, and for that of the flight which an observer accompanies as its shadow: AB1 for an
/// observer AB1A. The server's echo of them is nobody else's aircraft.
bool isOwnOrShadowed(const QString &callsign, const model::ConnectInfo &own);

/// `altitudeFeet`: the report's true altitude as the simulator has adjusted it.
model::AircraftVisualState visualStateOf(const fsd::pdu::PilotPosition &report, double altitudeFeet);
model::AircraftVisualState visualStateOf(const fsd::pdu::FastPilotPosition &report, double altitudeFeet);

/// Knots, 0 to 900, from a report's velocities. An aircraft that hardly moves keeps what its slow report told; one that
/// says that it has stopped has none.
double groundSpeedAfter(const fsd::pdu::FastPilotPosition &report, double before);

/// How an aircraft moves, as the simulator takes it.
struct Velocities
{
    model::VelocityVector positional;
    model::VelocityVector rotational;

    bool operator==(const Velocities &) const = default;
};

/// What a report tells of them; all zero for one that says that the aircraft has stopped.
Velocities velocitiesOf(const fsd::pdu::FastPilotPosition &report);

/// A peer's plane information, trimmed, and cut to what is worth keeping.
struct PlaneInfo
{
    /// Longer texts are cut, so that a server can't fill the memory with them.
    static constexpr qsizetype longestText = 256;

    QString equipment;
    QString airline;
    QString livery;
    QString csl;

    static PlaneInfo of(const fsd::pdu::PlaneInfoResponse &pdu);
};

/// Takes over what `info` tells: airline, livery, type and model hint, each by its own rule.
void apply(model::RemoteAircraft &aircraft, const PlaneInfo &info, TypeNormalizer &types);

} // namespace tarvo::manager
