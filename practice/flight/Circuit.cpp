#include "practice/flight/Circuit.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace tarvo::practice {

namespace {
constexpr double gravity = 9.80665;
constexpr double wheelBase = 15.6;  ///< metres
constexpr int smoothingSeconds = 2; ///< to either side

/// A leg with its beginning.
struct Piece
{
    const Leg *leg;
    double start = 0;
    double seconds = 0;
    double speed = 0; ///< on entry, as are all below
    double along = 0;
    double left = 0;
    double angle = 0;
    double height = 0;
    double pitch = 0;

    Knot at(double time) const;
};

double distanceOf(const Leg &leg)
{
    return leg.turn == 0 ? leg.length : leg.length * qDegreesToRadians(std::abs(leg.turn));
}

bool isHold(const Leg &leg, double entrySpeed)
{
    return entrySpeed == 0 && leg.exitSpeed == 0;
}

Knot Piece::at(double time) const
{
    const double share = seconds > 0 ? std::clamp((time - start) / seconds, 0.0, 1.0) : 0.0;
    const double t = share * seconds;
    const double gone = isHold(*leg, speed) ? 0 : speed * t + (leg->exitSpeed - speed) * t * share / 2;
    Knot knot{};
    knot[Angle] = angle;
    if (leg->turn == 0) {
        knot[Along] = along + gone * std::cos(angle);
        knot[Left] = left + gone * std::sin(angle);
    } else {
        const double side = leg->turn > 0 ? 1 : -1;
        const double turned = angle + side * gone / leg->length;
        knot[Along] = along + side * leg->length * (std::sin(turned) - std::sin(angle));
        knot[Left] = left - side * leg->length * (std::cos(turned) - std::cos(angle));
        knot[Angle] = turned;
    }
    knot[Height] = height + share * (leg->exitHeight - height);
    knot[Pitch] = pitch + share * (leg->exitPitch - pitch);
    return knot;
}

std::vector<Piece> layOut(const Pattern &pattern)
{
    std::vector<Piece> pieces;
    Piece next{.leg = nullptr,
               .speed = pattern.startSpeed,
               .along = pattern.startAlong,
               .left = pattern.startLeft,
               .angle = pattern.startAngle,
               .height = pattern.startHeight,
               .pitch = pattern.startPitch};
    for (const Leg &leg : pattern.legs) {
        next.leg = &leg;
        next.seconds = isHold(leg, next.speed) ? leg.length : 2 * distanceOf(leg) / (next.speed + leg.exitSpeed);
        pieces.push_back(next);
        const Knot end = next.at(next.start + next.seconds);
        next = {.leg = nullptr,
                .start = next.start + next.seconds,
                .speed = leg.exitSpeed,
                .along = end[Along],
                .left = end[Left],
                .angle = end[Angle],
                .height = leg.exitHeight,
                .pitch = leg.exitPitch};
    }
    return pieces;
}

std::vector<Knot> sampleEachSecond(const std::vector<Piece> &pieces)
{
    const Piece &last = pieces.back();
    const double end = last.start + last.seconds;
    // A hold at the end fills the last second up; a flight without one is a little slower or faster instead.
    const bool holds = isHold(*last.leg, last.speed);
    const auto count = static_cast<std::size_t>(holds ? std::ceil(end) : std::round(end));
    const double pace = holds ? 1.0 : end / static_cast<double>(count);
    std::vector<Knot> knots;
    knots.reserve(count);
    std::size_t current = 0;
    for (std::size_t second = 0; second < count; ++second) {
        const double time = pace * static_cast<double>(second);
        while (current + 1 < pieces.size() && pieces[current + 1].start <= time)
            ++current;
        knots.push_back(pieces[current].at(time));
    }
    return knots;
}

/// The knot `offset` seconds away on the closed loop, with the angle, which gains `turned` in a loop, carried on.
Knot around(const std::vector<Knot> &knots, double turned, std::size_t index, int offset)
{
    const auto count = static_cast<int>(knots.size());
    const int wanted = static_cast<int>(index) + offset;
    Knot knot = knots[static_cast<std::size_t>((wanted + count) % count)];
    if (wanted < 0)
        knot[Angle] -= turned;
    else if (wanted >= count)
        knot[Angle] += turned;
    return knot;
}

/// Takes the corners off: each knot becomes the mean of its neighbourhood.
std::vector<Knot> smoothed(const std::vector<Knot> &knots, double turned)
{
    std::vector<Knot> result(knots.size());
    for (std::size_t i = 0; i < knots.size(); ++i) {
        for (int offset = -smoothingSeconds; offset <= smoothingSeconds; ++offset) {
            const Knot neighbour = around(knots, turned, i, offset);
            for (std::size_t channel = 0; channel < channelCount; ++channel)
                result[i][channel] += neighbour[channel] / (2 * smoothingSeconds + 1);
        }
    }
    return result;
}

/// Bank in the air and nose wheel on the ground, as the turns demand.
void steer(std::vector<Knot> &knots, double turned)
{
    for (std::size_t i = 0; i < knots.size(); ++i) {
        const Knot before = around(knots, turned, i, -1);
        const Knot after = around(knots, turned, i, 1);
        const double speed = std::hypot(after[Along] - before[Along], after[Left] - before[Left]) / 2;
        const double leftTurn = (after[Angle] - before[Angle]) / 2; // radians per second
        const double airborne = std::clamp((knots[i][Height] - 3) / 27, 0.0, 1.0);
        knots[i][Bank] = -airborne * qRadiansToDegrees(std::atan(speed * leftTurn / gravity));
        knots[i][Steer] =
            knots[i][Height] > 0.1 || speed < 0.5 ? 0 : -qRadiansToDegrees(std::atan(wheelBase * leftTurn / speed));
    }
}

void moveSurfaces(CircuitPlan &plan, std::span<const Move> moves)
{
    for (const Channel channel : {Flaps, Speedbrake}) {
        double position = 0;
        for (std::size_t second = 0; second < plan.knots.size(); ++second) {
            double target = 0;
            double step = 1;
            for (const Move &move : moves) {
                if (move.channel != channel ||
                    plan.startOf(QString::fromUtf16(move.phase)) + move.after > static_cast<double>(second))
                    continue;
                target = move.target;
                step = move.perSecond;
            }
            position += std::clamp(target - position, -step, step);
            plan.knots[second][channel] = position;
        }
    }
}
} // namespace

double CircuitPlan::startOf(const QString &phase) const
{
    const auto found = std::find_if(phases.begin(), phases.end(), [&](const Phase &p) { return p.name == phase; });
    return found == phases.end() ? -1 : found->start;
}

CircuitPlan planCircuit(const Pattern &pattern)
{
    CircuitPlan plan;
    const std::vector<Piece> pieces = layOut(pattern);
    for (const Piece &piece : pieces) {
        plan.turned += qDegreesToRadians(piece.leg->turn);
        if (piece.leg->phase)
            plan.phases.push_back({QString::fromUtf16(piece.leg->phase), piece.start});
    }
    plan.knots = smoothed(sampleEachSecond(pieces), plan.turned);
    steer(plan.knots, plan.turned);
    moveSurfaces(plan, pattern.moves);
    return plan;
}

} // namespace tarvo::practice
