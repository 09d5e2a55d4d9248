#include "practice/people/CrowdTrack.h"

#include "practice/flight/AircraftState.h"

#include "fsd/pdu/AttitudeWord.h"

#include <QtMath>

#include <array>
#include <charconv>
#include <cmath>

namespace tarvo::practice {

namespace {
constexpr double metresPerDegree = 111'194.9; // of latitude
constexpr double gravity = 9.80665;
constexpr double pitch = 2;                                          // degrees
constexpr double turnRate = CrowdTrack::speed / CrowdTrack::radiusM; // radians per second, to the right
constexpr std::size_t directions = 4096;                             // as fine as 0.17 m/s

/// Radians from north, clockwise, of where he is as seen from the centre; his nose points a quarter further.
double bearing(const CrowdTrack::Place &place, double seconds)
{
    return place.phaseAtStart + turnRate * seconds;
}
} // namespace

void appendFixed(QByteArray &text, double value, int decimals)
{
    std::array<char, 32> digits{};
    double scale = 1;
    for (int i = 0; i < decimals; ++i)
        scale *= 10;
    const auto scaled = static_cast<qint64>(std::llround(std::abs(value) * scale));
    const auto whole = static_cast<qint64>(scale);
    char *end = std::to_chars(digits.data(), digits.data() + digits.size(), scaled / whole).ptr;
    if (decimals > 0) {
        // A leading one keeps the zeros of the fraction; the point takes its place.
        const auto point = static_cast<std::size_t>(end - digits.data());
        end = std::to_chars(end, digits.data() + digits.size(), whole + scaled % whole).ptr;
        digits.at(point) = '.';
    }
    if (value < 0 && scaled != 0)
        text += '-';
    text.append(digits.data(), end - digits.data());
}

CrowdTrack::CrowdTrack()
{
    const double bank = qRadiansToDegrees(std::atan(speed * turnRate / gravity));
    m_directions.reserve(directions);
    for (std::size_t i = 0; i < directions; ++i) {
        const double angle = 2 * M_PI * static_cast<double>(i) / static_cast<double>(directions);
        const double heading = std::fmod(qRadiansToDegrees(angle) + 90, 360.0);
        const quint32 word = fsd::pdu::packAttitude({.pitch = pitch, .heading = heading, .bank = bank});
        QByteArray text = ':' + QByteArray::number(word);
        // East, up, north; pitch, heading, bank.
        for (const double rate : {speed * std::cos(angle), 0.0, -speed * std::sin(angle), 0.0, turnRate, 0.0}) {
            text += ':';
            appendFixed(text, rate, 4);
        }
        m_directions.push_back({word, text + ":0.00\r\n"});
    }
}

CrowdTrack::Place CrowdTrack::place(const FsdPosition &centre, double phaseAtStart, int altitudeFeet)
{
    return {.centre = centre,
            .metresPerDegreeEast = metresPerDegree * std::cos(qDegreesToRadians(centre.latitude)),
            .phaseAtStart = phaseAtStart,
            .altitudeFeet = altitudeFeet};
}

FsdPosition CrowdTrack::positionAt(const Place &place, double seconds)
{
    const double angle = bearing(place, seconds);
    return {place.centre.latitude + radiusM * std::cos(angle) / metresPerDegree,
            place.centre.longitude + radiusM * std::sin(angle) / place.metresPerDegreeEast};
}

const CrowdTrack::Direction &CrowdTrack::directionAt(const Place &place, double seconds) const
{
    const double turns = bearing(place, seconds) / (2 * M_PI);
    const double share = turns - std::floor(turns);
    return m_directions[static_cast<std::size_t>(share * static_cast<double>(directions)) % directions];
}

QByteArray CrowdTrack::fastTail(const Place &place, double seconds) const
{
    const FsdPosition position = positionAt(place, seconds);
    const QByteArray altitude = QByteArray::number(place.altitudeFeet) + ".00";
    QByteArray text;
    text.reserve(160);
    text += ':';
    appendFixed(text, position.latitude, 6);
    text += ':';
    appendFixed(text, position.longitude, 6);
    text += ':';
    text += altitude;
    text += ':';
    text += altitude;
    text += directionAt(place, seconds).velocities;
    return text;
}

quint32 CrowdTrack::attitude(const Place &place, double seconds) const
{
    return directionAt(place, seconds).attitude;
}

int CrowdTrack::knots()
{
    return static_cast<int>(speed * knotsPerMetrePerSecond);
}

} // namespace tarvo::practice
