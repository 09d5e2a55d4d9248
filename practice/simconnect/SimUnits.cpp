#include "practice/simconnect/SimUnits.h"

#include "common/Units.h"
#include "practice/flight/AircraftState.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace tarvo::practice {

namespace {

constexpr double fullPosition = 16383;       // of "position"
constexpr double largestCode = 9999;         // four decimal digits
constexpr double lowestKhzOfBcd16 = 100'000; // the leading 1 of the hundreds isn't in the digits

double same(double value)
{
    return value;
}

/// The four lowest decimal digits as four nibbles.
double packDigits(double number)
{
    auto rest = static_cast<int>(std::clamp(number, 0.0, largestCode));
    int packed = 0;
    for (int shift = 0; shift < 16; shift += 4, rest /= 10)
        packed |= rest % 10 << shift;
    return packed;
}

double unpackDigits(double packed)
{
    const auto nibbles = static_cast<int>(std::clamp(packed, 0.0, 65535.0));
    int number = 0;
    for (int shift = 12; shift >= 0; shift -= 4)
        number = number * 10 + (nibbles >> shift & 15);
    return number;
}

const SimUnit units[] = {
    {"number", Quantity::Number, same, same},
    {"bool", Quantity::Number, same, same},
    {"enum", Quantity::Number, same, same},
    {"percent over 100", Quantity::Ratio, same, same},
    {"number", Quantity::Ratio, same, same},
    {"percent", Quantity::Ratio, [](double v) { return v * 100; }, [](double v) { return v / 100; }},
    {"position", Quantity::Ratio, [](double v) { return v * fullPosition; }, [](double v) { return v / fullPosition; }},
    {"degrees", Quantity::Angle, same, same},
    {"radians", Quantity::Angle, [](double v) { return qDegreesToRadians(v); },
     [](double v) { return qRadiansToDegrees(v); }},
    {"radians per second", Quantity::AngularRate, same, same},
    {"meters", Quantity::Length, same, same},
    {"feet", Quantity::Length, [](double v) { return v * common::feetPerMetre; },
     [](double v) { return v / common::feetPerMetre; }},
    {"meters per second", Quantity::Speed, same, same},
    {"knots", Quantity::Speed, [](double v) { return v * knotsPerMetrePerSecond; },
     [](double v) { return v / knotsPerMetrePerSecond; }},
    {"millibars", Quantity::Pressure, same, same},
    {"celsius", Quantity::Temperature, same, same},
    {"Frequency BCD16", Quantity::Frequency, [](double v) { return packDigits((v - lowestKhzOfBcd16) / 10); },
     [](double v) { return lowestKhzOfBcd16 + unpackDigits(v) * 10; }},
    {"kHz", Quantity::Frequency, same, same},
    {"Bco16", Quantity::Code, packDigits, unpackDigits},
    {"number", Quantity::Code, same, same},
    {"", Quantity::Text, same, same},
    {"string", Quantity::Text, same, same},
    {"number", Quantity::Waypoints, same, same},
};
} // namespace

const SimUnit *simUnit(const QByteArray &name, Quantity quantity)
{
    for (const SimUnit &unit : units) {
        if (unit.quantity == quantity && name.compare(unit.name, Qt::CaseInsensitive) == 0)
            return &unit;
    }
    return nullptr;
}

} // namespace tarvo::practice
