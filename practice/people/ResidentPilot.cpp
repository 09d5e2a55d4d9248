#include "practice/people/ResidentPilot.h"

#include "common/Callsign.h"
#include "common/Units.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/FlightPlan.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PilotPosition.h"
#include "fsd/pdu/PlaneInfoResponse.h"
#include "practice/people/Due.h"

#include <algorithm>
#include <cmath>

namespace tarvo::practice {

using common::feetPerMetre;
using fsd::toLine;
using fsd::pdu::ClientQueryType;
using fsd::pdu::FastPilotPositionType;

namespace {
constexpr double standsStillBelow = 0.005; ///< metres or radians per second
const QString everybody = QStringLiteral("@94386");

bool isMoving(const AircraftState &a)
{
    const double rates[] = {a.eastVelocity, a.upVelocity, a.northVelocity, a.pitchRate, a.yawRate};
    return std::any_of(std::begin(rates), std::end(rates),
                       [](double rate) { return std::abs(rate) >= standsStillBelow; });
}
} // namespace

model::AircraftConfiguration configurationOf(const AircraftState &aircraft)
{
    constexpr int flapsStep = 5;    // percent
    constexpr double hair = 0.0001; // flaps that rest on a step are a rounding error above or below it
    model::AircraftConfiguration c;
    c.lights = {.strobeOn = aircraft.strobes,
                .landingOn = aircraft.landingLights,
                .taxiOn = aircraft.taxiLights,
                .beaconOn = aircraft.beacon,
                .navOn = aircraft.navLights,
                .present = true};
    c.engines.engine[0] = {.on = aircraft.engine1, .isReversing = aircraft.reverse};
    c.engines.engine[1] = {.on = aircraft.engine2, .isReversing = aircraft.reverse};
    c.engines.present = true;
    c.gearDown = aircraft.gearDown;
    c.flapsPct = static_cast<int>(aircraft.flaps * 100 / flapsStep + hair) * flapsStep;
    c.spoilersOut = aircraft.speedbrake > 0;
    c.onGround = aircraft.onGround;
    return c;
}

ResidentPilot::ResidentPilot(const PilotProfile &profile, FsdServer &server, const ResidentSettings &settings,
                             const common::Clock &clock)
    : Resident(pilot(profile.callsign, profile.cid, profile.realName), server, settings, clock),
      m_profile(profile),
      m_flight(profile.pattern),
      m_flightAtStart(std::max(0.0, m_flight.startOf(profile.startPhase))),
      m_startMs(now()),
      m_nextSlowMs(m_startMs),
      m_nextLookMs(m_startMs + settings.configurationMs)
{
    const AircraftState aircraft = state();
    position = FsdPosition{aircraft.latitude, aircraft.longitude};
    m_told = configurationOf(aircraft);
    if (!profile.filedType.isEmpty())
        fileFlightPlan();
}

void ResidentPilot::fileFlightPlan()
{
    fsd::pdu::FlightPlan plan;
    plan.From = callsign();
    plan.To = common::serverCallsign;
    plan.flightRules = QStringLiteral("I");
    plan.aircraftType = aircraftType = m_profile.filedType;
    plan.trueAirspeed = QStringLiteral("450");
    plan.departureAirport = QStringLiteral("ZBAA");
    plan.estimatedDepartureTime = plan.actualDepartureTime = QStringLiteral("0100");
    plan.cruiseAltitude = QStringLiteral("31100");
    plan.destinationAirport = m_profile.destination;
    plan.enrouteHours = QStringLiteral("2");
    plan.enrouteMinutes = QStringLiteral("10");
    plan.fuelHours = QStringLiteral("4");
    plan.fuelMinutes = QStringLiteral("0");
    plan.alternateAirport = QStringLiteral("ZBTJ");
    plan.remarks = QStringLiteral("PRACTICE");
    plan.route = QStringLiteral("DCT");
    flightPlan = toLine(plan);
}

AircraftState ResidentPilot::state() const
{
    return m_flight.at(m_flightAtStart + static_cast<double>(now() - m_startMs) / 1000.0);
}

void ResidentPilot::step()
{
    Resident::step();
    const AircraftState aircraft = state();
    position = FsdPosition{aircraft.latitude, aircraft.longitude};
    if (isDue(m_nextLookMs, settings().configurationMs, now()))
        tellChanges(aircraft);
    if (fast && isDue(m_nextFastMs, settings().fastIntervalMs, now()))
        reportVelocity(aircraft, FastPilotPositionType::Fast);
    if (isDue(m_nextSlowMs, settings().slowIntervalMs, now()))
        reportSlow(aircraft);
}

void ResidentPilot::reportSlow(const AircraftState &aircraft)
{
    if (isMoving(aircraft))
        reportVelocity(aircraft, FastPilotPositionType::Slow);
    fsd::pdu::PilotPosition report;
    report.From = callsign();
    report.squawkCode = m_profile.squawk;
    report.squawkingModeC = aircraft.modeC;
    report.rating = fsd::pdu::NetworkRating::Observer;
    report.latitude = aircraft.latitude;
    report.longitude = aircraft.longitude;
    report.trueAltitude = report.pressureAltitude = static_cast<qint32>(aircraft.altitudeM * feetPerMetre);
    report.groundSpeed = static_cast<qint32>(aircraft.groundSpeed() * knotsPerMetrePerSecond);
    report.pitch = aircraft.pitch;
    report.heading = aircraft.heading;
    report.bank = aircraft.bank;
    report.onGround = aircraft.onGround;
    say(toLine(report));
}

void ResidentPilot::reportVelocity(const AircraftState &aircraft, FastPilotPositionType movingType)
{
    fsd::pdu::FastPilotPosition report;
    report.type = isMoving(aircraft) ? movingType : FastPilotPositionType::Stopped;
    report.From = callsign();
    report.latitude = aircraft.latitude;
    report.longitude = aircraft.longitude;
    report.trueAltitude = report.altitudeAboveGround = aircraft.altitudeM * feetPerMetre;
    report.pitch = aircraft.pitch;
    report.heading = aircraft.heading;
    report.bank = aircraft.bank;
    report.onGround = aircraft.onGround;
    report.velocity1 = aircraft.eastVelocity;
    report.velocity2 = aircraft.upVelocity;
    report.velocity3 = aircraft.northVelocity;
    report.pitchVelocity = aircraft.pitchRate;
    report.headingVelocity = aircraft.yawRate;
    report.bankVelocity = aircraft.rollRate;
    report.noseGearAngle = aircraft.noseWheel;
    say(toLine(report));
}

void ResidentPilot::onFastAsked()
{
    m_nextFastMs = now();
}

void ResidentPilot::tellChanges(const AircraftState &aircraft)
{
    const model::AircraftConfiguration configuration = configurationOf(aircraft);
    if (!model::differs(m_told, configuration))
        return;
    tellConfiguration(everybody, model::incrementOf(m_told, configuration));
    m_told = configuration;
}

void ResidentPilot::tellConfiguration(const QString &to, const model::AircraftConfiguration &configuration)
{
    const model::AircraftConfigurationMessage message{.requestFull = {}, .configuration = configuration};
    say(toLine(fsd::pdu::ClientQuery(callsign(), to, ClientQueryType::AircraftConfiguration, {message.compose()})));
}

void ResidentPilot::onQuery(const QString &from, ClientQueryType type, const QStringList &payload)
{
    if (type != ClientQueryType::AircraftConfiguration) {
        Resident::onQuery(from, type, payload);
        return;
    }
    const auto message = model::AircraftConfigurationMessage::parse(payload.join(QLatin1Char(':')));
    if (!message.requestFull.value_or(false))
        return;
    model::AircraftConfiguration configuration = configurationOf(state());
    configuration.isFullData = true;
    tellConfiguration(from, configuration);
}

void ResidentPilot::onPlaneInfoRequest(const QString &from)
{
    if (!m_profile.equipment.isEmpty())
        say(toLine(fsd::pdu::PlaneInfoResponse(callsign(), from, m_profile.equipment, m_profile.airline,
                                               m_profile.livery, m_profile.csl)));
}

} // namespace tarvo::practice
