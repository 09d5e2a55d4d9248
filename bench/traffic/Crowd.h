#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <string_view>

/// The crowd of a load test: what each pilot reports at each moment. Both ends know it, so that the end that gets the
/// messages can tell what must stand in each.
namespace tarvo::bench::crowd {

constexpr double metresPerFoot = 1 / 3.28084;

/// What the altimeter of the own aircraft is off by, in feet: the aircraft near its altitude are to be drawn so much
/// lower. Every tenth is near; the others fly so high that nothing is shifted.
constexpr float temperatureErrorFeet = 120;

/// Of every pilot: as his callsign and his client tell.
constexpr std::string_view airline = "TST";
constexpr std::string_view typeCode = "B738";

/// What the plugin must be told of one report.
struct Report
{
    double latitude = 0;  ///< degrees
    double longitude = 0; ///< degrees
    double altitude = 0;  ///< metres
    double height = 0;    ///< metres; 0 in a slow report
    double pitch = 0;     ///< degrees
    double heading = 0;   ///< degrees
    double bank = 0;      ///< degrees
    std::array<double, 3> velocity{};
    std::array<double, 3> rotation{};
    double noseWheelAngle = 0;
    double groundSpeed = 0; ///< knots, as it follows from this report
};

/// "TST0042"; pilots are counted from 0.
QString callsignOf(int pilot);
/// The pilot of such a callsign; -1 for any other.
int pilotOf(std::string_view callsign);

/// The report of that pilot with that number, counted from 0; fast and slow ones are counted on their own.
Report fastReport(int pilot, int number);
Report slowReport(int pilot, int number);
/// The lines that say it, with their line end.
QByteArray fastLine(int pilot, int number);
QByteArray slowLine(int pilot, int number);

/// The number of the report that a latitude comes from; negative for one that is no pilot's.
int fastNumberAt(int pilot, double latitude);
int slowNumberAt(int pilot, double latitude);

/// Lights, engines and surfaces of every pilot, complete: the text of a configuration query.
QString configuration();

} // namespace tarvo::bench::crowd
