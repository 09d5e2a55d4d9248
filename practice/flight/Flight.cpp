#include "practice/flight/Flight.h"

#include "practice/flight/Patterns.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace tarvo::practice {

namespace {
// The threshold of Beijing Capital's runway 36R and the runway's true direction, near enough to fly, not to navigate.
constexpr double thresholdLatitude = 40.0665;
constexpr double thresholdLongitude = 116.5980;
constexpr double runwayCourse = 352.5;
constexpr double fieldElevation = 35;         ///< metres
constexpr double metresPerDegree = 111'194.9; ///< of latitude, on a sphere of 6371 km
constexpr double wheelsTouch = 0.15;          ///< metres; the struts take that much
// The wind rocks the aeroplane, also on its stand: a simulator never delivers the same sample for long, and a client
// may take unchanging data for a simulator that hangs.
constexpr double rockingDegrees = 0.02;
constexpr double rockingSeconds = 6; ///< of one swing, as near as makes whole swings in a loop

void place(AircraftState &state, const Knot &value, const Knot &speed, double eastShift, double northShift)
{
    const double course = qDegreesToRadians(runwayCourse);
    const double east = std::sin(course);
    const double north = std::cos(course);
    // To the left of the runway's direction lies (-north, east).
    const double metresPerDegreeEast = metresPerDegree * std::cos(qDegreesToRadians(thresholdLatitude));
    state.latitude = thresholdLatitude + (value[Along] * north + value[Left] * east + northShift) / metresPerDegree;
    state.longitude =
        thresholdLongitude + (value[Along] * east - value[Left] * north + eastShift) / metresPerDegreeEast;
    state.eastVelocity = speed[Along] * east - speed[Left] * north;
    state.northVelocity = speed[Along] * north + speed[Left] * east;
    state.upVelocity = speed[Height];
    state.heightM = value[Height];
    state.altitudeM = fieldElevation + value[Height];
    state.onGround = value[Height] < wheelsTouch;
}

void rock(double seconds, double loop, Knot &value, Knot &rate)
{
    const double pace = 2 * M_PI * std::round(loop / rockingSeconds) / loop; // radians per second
    value[Bank] += rockingDegrees * std::sin(pace * seconds);
    rate[Bank] += rockingDegrees * pace * std::cos(pace * seconds);
}

void turn(AircraftState &state, const Knot &value, const Knot &rate)
{
    const double heading = std::fmod(runwayCourse - qRadiansToDegrees(value[Angle]), 360.0);
    state.heading = heading < 0 ? heading + 360.0 : heading;
    state.pitch = value[Pitch];
    state.bank = value[Bank];
    // From the rates of the three angles to those about the body's axes.
    const double pitch = qDegreesToRadians(value[Pitch]);
    const double bank = qDegreesToRadians(value[Bank]);
    const double pitchChange = qDegreesToRadians(rate[Pitch]);
    const double bankChange = qDegreesToRadians(rate[Bank]);
    const double headingChange = -rate[Angle];
    state.rollRate = bankChange - headingChange * std::sin(pitch);
    state.pitchRate = pitchChange * std::cos(bank) + headingChange * std::sin(bank) * std::cos(pitch);
    state.yawRate = headingChange * std::cos(bank) * std::cos(pitch) - pitchChange * std::sin(bank);
}
} // namespace

Flight::Flight() : Flight(homeCircuit()) {}

Flight::Flight(const Pattern &pattern) : m_plan(planCircuit(pattern)), m_east(pattern.east), m_north(pattern.north)
{
    for (const Cue &cue : pattern.cues)
        m_switchings.push_back({m_plan.startOf(QString::fromUtf16(cue.phase)) + cue.after, cue.what, cue.on});
    std::stable_sort(m_switchings.begin(), m_switchings.end(),
                     [](const Switching &a, const Switching &b) { return a.time < b.time; });
}

double Flight::duration() const
{
    return static_cast<double>(m_plan.knots.size());
}

double Flight::wrapped(double seconds) const
{
    if (!std::isfinite(seconds))
        return 0;
    const double rest = std::fmod(seconds, duration());
    return rest < 0 ? rest + duration() : rest;
}

void Flight::interpolate(double seconds, Knot &value, Knot &derivative) const
{
    const auto count = static_cast<int>(m_plan.knots.size());
    const int index = std::min(static_cast<int>(seconds), count - 1);
    const double u = seconds - index;
    const double v = 1 - u;
    const double weights[] = {v * v * v / 6, (3 * u * u * u - 6 * u * u + 4) / 6, (3 * v * v * v - 6 * v * v + 4) / 6,
                              u * u * u / 6};
    const double slopes[] = {-v * v / 2, (3 * u * u - 4 * u) / 2, -(3 * v * v - 4 * v) / 2, u * u / 2};
    value = {};
    derivative = {};
    for (int i = 0; i < 4; ++i) {
        const int wanted = index - 1 + i;
        Knot knot = m_plan.knots[static_cast<std::size_t>((wanted + count) % count)];
        if (wanted < 0)
            knot[Angle] -= m_plan.turned;
        else if (wanted >= count)
            knot[Angle] += m_plan.turned;
        for (std::size_t channel = 0; channel < channelCount; ++channel) {
            value[channel] += weights[i] * knot[channel];
            derivative[channel] += slopes[i] * knot[channel];
        }
    }
}

AircraftState Flight::at(double seconds) const
{
    const double time = wrapped(seconds);
    Knot value;
    Knot rate;
    interpolate(time, value, rate);
    rock(time, duration(), value, rate);
    AircraftState state;
    place(state, value, rate, m_east, m_north);
    turn(state, value, rate);
    state.noseWheel = value[Steer];
    state.flaps = std::clamp(value[Flaps], 0.0, 1.0);
    state.speedbrake = std::clamp(value[Speedbrake], 0.0, 1.0);
    for (const Switching &switching : m_switchings) {
        if (switching.time > time)
            break;
        state.*switching.what = switching.on;
    }
    return state;
}

QString Flight::phaseAt(double seconds) const
{
    const double time = wrapped(seconds);
    QString name;
    for (const Phase &phase : m_plan.phases) {
        if (phase.start <= time)
            name = phase.name;
    }
    return name;
}

double Flight::startOf(const QString &phase) const
{
    return m_plan.startOf(phase);
}

} // namespace tarvo::practice
