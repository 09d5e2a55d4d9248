#include "simulator/msfs/RemoteRules.h"

#include "common/Units.h"
#include "model/RemoteAircraft.h"
#include "model/VelocityVector.h"
#include "simulator/msfs/session/SimConnectSession.h"

#include <QRegularExpression>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace tarvo::simulator::msfs {

namespace {

constexpr double flyingKnots = 80;
constexpr double flyingMetres = 20;
constexpr double standingMetres = 1;
constexpr double knotsPerMetrePerSecond = 1.943844;
constexpr double standstill = 0.05; ///< m/s; below, the figures are noise
constexpr double standstillKnots = 0.1;
constexpr double fastestKnots = 900;
constexpr double earthRadiusMetres = 6371000;

double squared(double value)
{
    return value * value;
}

} // namespace

bool isOnGround(const model::RemoteAircraft &aircraft)
{
    const double height = aircraft.visualState.altitudeAglM;
    if (!aircraft.hasConfiguration || !aircraft.configuration.onGround)
        return height <= standingMetres;
    return *aircraft.configuration.onGround && aircraft.groundSpeed < flyingKnots && height < flyingMetres;
}

double groundSpeedAfter(const model::VelocityVector &velocity, double last)
{
    const double speed = std::sqrt(squared(velocity.x) + squared(velocity.z));
    if (speed > standstill)
        return std::clamp(speed * knotsPerMetrePerSecond, 0.0, fastestKnots);
    return last <= standstillKnots && std::abs(velocity.y) <= standstill ? 0 : last;
}

RemotePosition positionOf(const model::RemoteAircraft &aircraft)
{
    const model::AircraftVisualState &state = aircraft.visualState;
    return {.latitude = state.latitude,
            .longitude = state.longitude,
            .altitudeFeet = state.altitudeMslM * common::feetPerMetre,
            .pitch = state.pitch,
            .bank = state.bank,
            .heading = state.heading,
            .onGround = isOnGround(aircraft),
            .speedKnots = aircraft.groundSpeed};
}

QString callsignAirline(const QString &callsign)
{
    static const QRegularExpression pattern(QStringLiteral(R"(^([A-Z]{3})\d+)"));
    return pattern.match(callsign.trimmed().toUpper()).captured(1);
}

double distanceMetres(double latitude1, double longitude1, double latitude2, double longitude2)
{
    const double halfHeight = qDegreesToRadians(latitude2 - latitude1) / 2;
    const double halfWidth = qDegreesToRadians(longitude2 - longitude1) / 2;
    const double a = squared(std::sin(halfHeight)) + std::cos(qDegreesToRadians(latitude1)) *
                                                         std::cos(qDegreesToRadians(latitude2)) *
                                                         squared(std::sin(halfWidth));
    return 2 * earthRadiusMetres * std::asin(std::sqrt(std::min(a, 1.0)));
}

} // namespace tarvo::simulator::msfs
