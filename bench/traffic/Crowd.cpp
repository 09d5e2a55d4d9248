#include "traffic/Crowd.h"

#include "fsd/pdu/AttitudeWord.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PilotPosition.h"

#include <charconv>
#include <cmath>

namespace tarvo::bench::crowd {

namespace {

constexpr int digits = 4;
constexpr std::string_view prefix = "TST";
constexpr double step = 1e-6;          ///< degrees of latitude between two reports: the wire's resolution
constexpr double betweenPilots = 0.02; ///< degrees
constexpr double slowOffset = 0.01;    ///< degrees; tells slow reports from fast ones
/// More than 6000 feet above the own aircraft, so that its temperature correction leaves these altitudes alone.
constexpr int highFeet = 30'000;
/// Less than 3000 feet from the own aircraft, wherever it is in its circuit: the whole correction.
constexpr int lowFeet = 2'000;
constexpr int lowOneIn = 10;
constexpr double knotsPerMetrePerSecond = 1.943844;
constexpr int slowGroundSpeed = 250; ///< knots; differs from what the velocities give

double firstLatitude(int pilot)
{
    return 10 + pilot * betweenPilots;
}

double longitudeOf(int pilot)
{
    return 100 + pilot * betweenPilots;
}

bool isLow(int pilot)
{
    return pilot % lowOneIn == lowOneIn - 1;
}

int feetOf(int pilot)
{
    return isLow(pilot) ? lowFeet : highFeet;
}

/// Metres, where an aircraft that reports these feet is to be drawn.
double drawnAltitude(int pilot, double feet)
{
    return (isLow(pilot) ? feet - temperatureErrorFeet : feet) * metresPerFoot;
}

fsd::pdu::Attitude attitudeOf(int pilot)
{
    return {.pitch = 2, .heading = static_cast<double>(pilot % 360), .bank = -5, .onGround = false};
}

/// The attitude as a receiver reads it: the packed word rounds.
Report withAttitude(Report report, int pilot)
{
    const fsd::pdu::Attitude read = fsd::pdu::unpackAttitude(fsd::pdu::packAttitude(attitudeOf(pilot)));
    report.pitch = read.pitch;
    report.heading = read.heading;
    report.bank = read.bank;
    return report;
}

fsd::pdu::FastPilotPosition fastPosition(int pilot, int number)
{
    fsd::pdu::FastPilotPosition position;
    position.From = callsignOf(pilot);
    position.latitude = firstLatitude(pilot) + number * step;
    position.longitude = longitudeOf(pilot);
    position.trueAltitude = feetOf(pilot) + number % 100;
    position.altitudeAboveGround = feetOf(pilot) - 100;
    position.velocity1 = 120 + number % 10;
    position.velocity2 = 1.5;
    position.velocity3 = -50.25;
    position.pitchVelocity = 0.01;
    position.headingVelocity = -0.02;
    position.bankVelocity = 0.03;
    position.noseGearAngle = 12.5;
    const fsd::pdu::Attitude attitude = attitudeOf(pilot);
    position.pitch = attitude.pitch;
    position.heading = attitude.heading;
    position.bank = attitude.bank;
    return position;
}

fsd::pdu::PilotPosition slowPosition(int pilot, int number)
{
    fsd::pdu::PilotPosition position;
    position.From = callsignOf(pilot);
    position.squawkCode = 2000;
    position.squawkingModeC = true;
    position.rating = fsd::pdu::NetworkRating::Observer;
    position.latitude = firstLatitude(pilot) + slowOffset + number * step;
    position.longitude = longitudeOf(pilot);
    position.trueAltitude = feetOf(pilot);
    position.pressureAltitude = feetOf(pilot) + 200;
    position.groundSpeed = slowGroundSpeed;
    const fsd::pdu::Attitude attitude = attitudeOf(pilot);
    position.pitch = attitude.pitch;
    position.heading = attitude.heading;
    position.bank = attitude.bank;
    return position;
}

} // namespace

QString callsignOf(int pilot)
{
    return QStringLiteral("TST%1").arg(pilot, digits, 10, QLatin1Char('0'));
}

int pilotOf(std::string_view callsign)
{
    if (callsign.size() != prefix.size() + digits || !callsign.starts_with(prefix))
        return -1;
    int pilot = -1;
    const char *end = callsign.data() + callsign.size();
    const auto [read, error] = std::from_chars(callsign.data() + prefix.size(), end, pilot);
    return error == std::errc() && read == end ? pilot : -1;
}

Report fastReport(int pilot, int number)
{
    const fsd::pdu::FastPilotPosition said = fastPosition(pilot, number);
    const double speed = std::hypot(said.velocity1, said.velocity3);
    return withAttitude({.latitude = said.latitude,
                         .longitude = said.longitude,
                         .altitude = drawnAltitude(pilot, said.trueAltitude),
                         .height = said.altitudeAboveGround * metresPerFoot,
                         .velocity = {said.velocity1, said.velocity2, said.velocity3},
                         .rotation = {said.pitchVelocity, said.headingVelocity, said.bankVelocity},
                         .noseWheelAngle = said.noseGearAngle,
                         .groundSpeed = speed * knotsPerMetrePerSecond},
                        pilot);
}

Report slowReport(int pilot, int number)
{
    const fsd::pdu::PilotPosition said = slowPosition(pilot, number);
    return withAttitude({.latitude = said.latitude,
                         .longitude = said.longitude,
                         .altitude = drawnAltitude(pilot, said.trueAltitude),
                         .groundSpeed = static_cast<double>(said.groundSpeed)},
                        pilot);
}

QByteArray fastLine(int pilot, int number)
{
    return fsd::toLine(fastPosition(pilot, number)).toLatin1();
}

QByteArray slowLine(int pilot, int number)
{
    return fsd::toLine(slowPosition(pilot, number)).toLatin1();
}

int fastNumberAt(int pilot, double latitude)
{
    const double number = std::round((latitude - firstLatitude(pilot)) / step);
    return number >= 0 && number < slowOffset / step ? static_cast<int>(number) : -1;
}

int slowNumberAt(int pilot, double latitude)
{
    return fastNumberAt(pilot, latitude - slowOffset);
}

QString configuration()
{
    return QStringLiteral(
        R"({"config":{"is_full_data":true,"lights":{"strobe_on":true,"landing_on":false,"taxi_on":false,"beacon_on":true,"nav_on":true},"engines":{"1":{"on":true},"2":{"on":true}},"gear_down":false,"flaps_pct":0,"spoilers_out":false,"on_ground":false}})");
}

} // namespace tarvo::bench::crowd
