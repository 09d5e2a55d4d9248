#pragma once

#include "model/RadioStackState.h"
#include "model/UserAircraftData.h"
#include "model/VelocityVector.h"

#include <QString>

namespace tarvo::fsd::pdu {
struct ATCPosition;
struct FastPilotPosition;
struct PilotPosition;
enum class FastPilotPositionType;
} // namespace tarvo::fsd::pdu

namespace tarvo::manager {

/// All that a report about the own aircraft is made of.
struct OwnPosition
{
    QString callsign;
    bool observer = false;
    model::UserAircraftData aircraft;
    model::RadioStackState radio;
    bool onGround = false;
    bool paused = false;
    double trueAltitudeFeet = 0;
    double pressureAltitudeFeet = 0;
};

/// Whether the aircraft's motion is worth a report with velocities. The bank rate isn't looked at.
bool isMoving(const model::UserAircraftData &aircraft);

/// East, up, north, as a report carries them. The one place that knows the order.
model::VelocityVector positionalVelocity(const model::UserAircraftData &aircraft);

/// A pilot's slow full report.
fsd::pdu::PilotPosition pilotPosition(const OwnPosition &own);
/// An observer's only report.
fsd::pdu::ATCPosition observerPosition(const OwnPosition &own);
/// A report with velocities; `type` is Fast or Slow.
fsd::pdu::FastPilotPosition velocityReport(const OwnPosition &own, fsd::pdu::FastPilotPositionType type);
/// A fast report of an aircraft that is held where it is.
fsd::pdu::FastPilotPosition zeroVelocityReport(const OwnPosition &own);
/// A report without velocities.
fsd::pdu::FastPilotPosition stoppedReport(const OwnPosition &own);

} // namespace tarvo::manager
