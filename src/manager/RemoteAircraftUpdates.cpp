#include "manager/RemoteAircraftUpdates.h"

#include "common/Units.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/PilotPosition.h"
#include "fsd/pdu/PlaneInfoResponse.h"
#include "manager/AircraftTypeRules.h"
#include "model/ConnectInfo.h"
#include "model/RemoteAircraft.h"

#include <algorithm>
#include <cmath>

namespace tarvo::manager {

using common::feetPerMetre;
using fsd::pdu::FastPilotPosition;
using fsd::pdu::FastPilotPositionType;
using fsd::pdu::PilotPosition;

namespace {

constexpr double knotsPerMetrePerSecond = 1.943844;
constexpr double standstill = 0.05;        ///< m/s; below, the figures are noise
constexpr double fastestGroundSpeed = 900; ///< knots

QString kept(const QString &text)
{
    return text.trimmed().left(PlaneInfo::longestText);
}

} // namespace

bool isOwnOrShadowed(const QString &callsign, const model::ConnectInfo &own)
{
    if (callsign == own.callsign)
        return true;
    if (!own.observer || own.callsign.size() != callsign.size() + 1 || !own.callsign.startsWith(callsign))
        return false;
    const QChar last = own.callsign.back();
    return last >= u'A' && last <= u'Z';
}

model::AircraftVisualState visualStateOf(const PilotPosition &report, double altitudeFeet)
{
    return {.latitude = report.latitude,
            .longitude = report.longitude,
            .altitudeMslM = altitudeFeet / feetPerMetre,
            .altitudeAglM = 0,
            .pitch = report.pitch,
            .heading = report.heading,
            .bank = report.bank,
            .noseWheelAngle = 0};
}

model::AircraftVisualState visualStateOf(const FastPilotPosition &report, double altitudeFeet)
{
    return {.latitude = report.latitude,
            .longitude = report.longitude,
            .altitudeMslM = altitudeFeet / feetPerMetre,
            .altitudeAglM = report.altitudeAboveGround / feetPerMetre,
            .pitch = report.pitch,
            .heading = report.heading,
            .bank = report.bank,
            .noseWheelAngle = report.noseGearAngle};
}

double groundSpeedAfter(const FastPilotPosition &report, double before)
{
    if (report.type == FastPilotPositionType::Stopped)
        return 0;
    const double speed = std::sqrt(report.velocity1 * report.velocity1 + report.velocity3 * report.velocity3);
    return speed > standstill ? std::clamp(speed * knotsPerMetrePerSecond, 0.0, fastestGroundSpeed) : before;
}

Velocities velocitiesOf(const FastPilotPosition &report)
{
    if (report.type == FastPilotPositionType::Stopped)
        return {};
    return {.positional = {report.velocity1, report.velocity2, report.velocity3},
            .rotational = {report.pitchVelocity, report.headingVelocity, report.bankVelocity}};
}

PlaneInfo PlaneInfo::of(const fsd::pdu::PlaneInfoResponse &pdu)
{
    return {kept(pdu.equipment), kept(pdu.airline), kept(pdu.livery), kept(pdu.csl)};
}

void apply(model::RemoteAircraft &aircraft, const PlaneInfo &info, TypeNormalizer &types)
{
    // The callsign knows the airline best; what a peer says counts only while nothing is known.
    if (const QString airline = airlineOfCallsign(aircraft.callsign); !airline.isEmpty())
        aircraft.airline = airline;
    else if (aircraft.airline.isEmpty())
        aircraft.airline = info.airline.toUpper();

    const QString livery = info.livery.toUpper();
    if (!livery.isEmpty())
        aircraft.livery = livery;
    if (!info.equipment.isEmpty())
        aircraft.typeCode = types.normalized(info.equipment);
    if (!info.csl.isEmpty())
        aircraft.remoteModelHint = info.csl;
    else if (aircraft.remoteModelHint.isEmpty() && livery.startsWith(QLatin1StringView("SWIFT_")))
        aircraft.remoteModelHint = livery; // such a livery is a model's name
}

} // namespace tarvo::manager
