#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

#include <limits>

namespace tarvo::ui {

/// One other aircraft as it was told. A number that isn't known is NaN.
struct TrafficTarget
{
    QString callsign;
    QString type;         ///< ICAO type designator; empty while unknown
    double latitude = 0;  ///< degrees
    double longitude = 0; ///< degrees
    double altitudeFeet = std::numeric_limits<double>::quiet_NaN();
    double heading = std::numeric_limits<double>::quiet_NaN();     ///< degrees, true
    double groundSpeed = std::numeric_limits<double>::quiet_NaN(); ///< knots

    bool operator==(const TrafficTarget &) const = default;
};

/// Where the plot is drawn from.
struct PlotOrigin
{
    double latitude = 0;  ///< degrees
    double longitude = 0; ///< degrees
    double altitudeFeet = 0;
};

/// One other aircraft as it is seen from the origin. A number that isn't known is NaN.
struct PlotContact
{
    TrafficTarget target;
    double distanceNm = std::numeric_limits<double>::quiet_NaN();           ///< along the great circle
    double bearing = std::numeric_limits<double>::quiet_NaN();              ///< from true north, 0 to below 360 degrees
    double relativeAltitudeFeet = std::numeric_limits<double>::quiet_NaN(); ///< above the origin

    bool operator==(const PlotContact &) const = default;
};

/// True for finite degrees with a latitude from -90 to 90. Exactly 0/0 is no position: aircraft that have not sent one
/// yet are there.
bool isPosition(double latitude, double longitude);

/// Nautical miles along the great circle between two positions.
double greatCircleNm(double fromLatitude, double fromLongitude, double toLatitude, double toLongitude);

/// The course on which the great circle leaves the first position, in degrees, 0 to below 360; 0 for the same position
/// twice.
double initialBearing(double fromLatitude, double fromLongitude, double toLatitude, double toLongitude);

/// The targets as seen from `own`, nearest first, at most `maximum` of them. Targets without a position are left out;
/// from an origin without a position nothing is seen.
QList<PlotContact> plotTraffic(const PlotOrigin &own, const QList<TrafficTarget> &targets, qsizetype maximum);

/// The range so many steps wider than this one, narrower for negative steps; at the ends the last one.
int steppedRange(int range, int steps);

/// The plot's range in nautical miles: the smallest that holds nine of ten contacts, from 2 to 320; 20 for none.
/// `contacts`: as from plotTraffic().
int plotRange(const QList<PlotContact> &contacts);

} // namespace tarvo::ui
