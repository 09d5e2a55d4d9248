#include "manager/PositionReports.h"

#include "fsd/pdu/ATCPosition.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/PilotPosition.h"
#include "manager/Truncate.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarvo::manager {

using fsd::pdu::FastPilotPosition;
using fsd::pdu::FastPilotPositionType;
using fsd::pdu::NetworkFacility;
using fsd::pdu::NetworkRating;

namespace {

constexpr double movingFrom = 0.005;             ///< metres or radians per second
constexpr quint32 observerFrequency = 99998;     ///< short form of 199.998 MHz, which no radio can tune
constexpr qint32 observerVisibilityRangeNm = 40; ///< nautical miles

/// Position and attitude, which every fast report has.
FastPilotPosition standingReport(const OwnPosition &own, FastPilotPositionType type)
{
    FastPilotPosition report;
    report.From = own.callsign;
    report.type = type;
    report.latitude = own.aircraft.latitude;
    report.longitude = own.aircraft.longitude;
    report.trueAltitude = own.trueAltitudeFeet;
    report.altitudeAboveGround = own.pressureAltitudeFeet; // on purpose: the network expects it in this field
    report.pitch = own.aircraft.pitch;
    report.heading = own.aircraft.heading;
    report.bank = own.aircraft.bank;
    report.onGround = own.onGround;
    return report;
}

} // namespace

bool isMoving(const model::UserAircraftData &aircraft)
{
    const std::array rates{aircraft.longitudeVelocity, aircraft.altitudeVelocity, aircraft.latitudeVelocity,
                           aircraft.pitchVelocity, aircraft.headingVelocity};
    return std::any_of(rates.begin(), rates.end(), [](double rate) { return std::abs(rate) >= movingFrom; });
}

model::VelocityVector positionalVelocity(const model::UserAircraftData &aircraft)
{
    return {.x = aircraft.longitudeVelocity, .y = aircraft.altitudeVelocity, .z = aircraft.latitudeVelocity};
}

fsd::pdu::PilotPosition pilotPosition(const OwnPosition &own)
{
    fsd::pdu::PilotPosition report;
    report.From = own.callsign;
    report.squawkCode = own.radio.transponderCode;
    report.squawkingModeC = own.radio.squawkingModeC;
    report.identing = own.radio.squawkingIdent;
    report.rating = NetworkRating::Observer;
    report.latitude = own.aircraft.latitude;
    report.longitude = own.aircraft.longitude;
    report.trueAltitude = truncated(own.trueAltitudeFeet);
    report.pressureAltitude = truncated(own.pressureAltitudeFeet);
    report.groundSpeed = truncated(own.aircraft.groundSpeed);
    report.pitch = own.aircraft.pitch;
    report.heading = own.aircraft.heading;
    report.bank = own.aircraft.bank;
    report.onGround = own.onGround;
    return report;
}

fsd::pdu::ATCPosition observerPosition(const OwnPosition &own)
{
    fsd::pdu::ATCPosition report;
    report.From = own.callsign;
    report.frequencies = {observerFrequency};
    report.facility = NetworkFacility::Observer;
    report.visibilityRange = observerVisibilityRangeNm;
    report.rating = NetworkRating::Observer;
    report.latitude = own.aircraft.latitude;
    report.longitude = own.aircraft.longitude;
    return report;
}

FastPilotPosition velocityReport(const OwnPosition &own, FastPilotPositionType type)
{
    FastPilotPosition report = standingReport(own, type);
    const model::VelocityVector velocity = positionalVelocity(own.aircraft);
    report.velocity1 = velocity.x;
    report.velocity2 = velocity.y;
    report.velocity3 = velocity.z;
    report.pitchVelocity = own.aircraft.pitchVelocity;
    report.headingVelocity = own.aircraft.headingVelocity;
    report.bankVelocity = own.aircraft.bankVelocity;
    report.noseGearAngle = own.aircraft.noseWheelAngle;
    return report;
}

FastPilotPosition zeroVelocityReport(const OwnPosition &own)
{
    return standingReport(own, FastPilotPositionType::Fast);
}

FastPilotPosition stoppedReport(const OwnPosition &own)
{
    return standingReport(own, FastPilotPositionType::Stopped);
}

} // namespace tarvo::manager
