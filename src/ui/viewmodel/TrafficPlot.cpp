#include "ui/viewmodel/TrafficPlot.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tarvo::ui {

namespace {

constexpr int ranges[] = {2, 5, 10, 20, 40, 80, 160, 320}; ///< nautical miles

constexpr double earthRadiusNm = 6371.0088 / 1.852; ///< mean radius of the earth

PlotContact seenFrom(const PlotOrigin &own, const TrafficTarget &target)
{
    return {target, greatCircleNm(own.latitude, own.longitude, target.latitude, target.longitude),
            initialBearing(own.latitude, own.longitude, target.latitude, target.longitude),
            target.altitudeFeet - own.altitudeFeet};
}

} // namespace

bool isPosition(double latitude, double longitude)
{
    const bool told = latitude != 0 || longitude != 0;
    return told && std::abs(latitude) <= 90 && std::isfinite(longitude); // a NaN is below nothing
}

double greatCircleNm(double fromLatitude, double fromLongitude, double toLatitude, double toLongitude)
{
    const double from = qDegreesToRadians(fromLatitude);
    const double to = qDegreesToRadians(toLatitude);
    // Half angles keep short distances exact. The sine has the period of the longitudes, so the date line is no edge.
    const double north = std::sin((to - from) / 2);
    const double east = std::sin(qDegreesToRadians(toLongitude - fromLongitude) / 2);
    const double square = north * north + std::cos(from) * std::cos(to) * east * east;
    return 2 * earthRadiusNm * std::asin(std::sqrt(std::min(square, 1.0)));
}

double initialBearing(double fromLatitude, double fromLongitude, double toLatitude, double toLongitude)
{
    const double from = qDegreesToRadians(fromLatitude);
    const double to = qDegreesToRadians(toLatitude);
    const double turn = qDegreesToRadians(toLongitude - fromLongitude);
    const double east = std::sin(turn) * std::cos(to);
    // cos(from) sin(to) - sin(from) cos(to) cos(turn), written so that equal positions give exactly 0.
    const double half = std::sin(turn / 2);
    const double north = std::sin(to - from) + 2 * std::sin(from) * std::cos(to) * half * half;
    const double degrees = qRadiansToDegrees(std::atan2(east, north));
    const double positive = degrees < 0 ? degrees + 360 : degrees;
    return positive < 360 ? positive : 0; // a hair west of north rounds up
}

QList<PlotContact> plotTraffic(const PlotOrigin &own, const QList<TrafficTarget> &targets, qsizetype maximum)
{
    QList<PlotContact> contacts;
    if (!isPosition(own.latitude, own.longitude))
        return contacts;
    contacts.reserve(targets.size());
    for (const TrafficTarget &target : targets)
        if (isPosition(target.latitude, target.longitude))
            contacts << seenFrom(own, target);
    const auto nearer = [](const PlotContact &one, const PlotContact &other) {
        return one.distanceNm != other.distanceNm ? one.distanceNm < other.distanceNm
                                                  : one.target.callsign < other.target.callsign;
    };
    const qsizetype kept = std::min(maximum, contacts.size());
    std::partial_sort(contacts.begin(), contacts.begin() + kept, contacts.end(), nearer);
    contacts.resize(kept);
    return contacts;
}

int steppedRange(int range, int steps)
{
    const auto at = std::ranges::lower_bound(ranges, range) - std::begin(ranges);
    return ranges[std::clamp<std::ptrdiff_t>(at + steps, 0, std::ssize(ranges) - 1)];
}

int plotRange(const QList<PlotContact> &contacts)
{
    if (contacts.isEmpty())
        return 20;
    const auto inside = static_cast<qsizetype>(std::ceil(static_cast<double>(contacts.size()) * 0.9));
    const double farthest = contacts.at(inside - 1).distanceNm;
    const auto *range = std::ranges::lower_bound(ranges, farthest, {}, [](int miles) { return double(miles); });
    return range == std::end(ranges) ? ranges[std::size(ranges) - 1] : *range;
}

} // namespace tarvo::ui
