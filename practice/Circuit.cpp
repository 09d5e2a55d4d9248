#include "practice/Circuit.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace tarvo::practice {

namespace {
/// One piece of the way. The speed changes evenly over it, height and pitch evenly in time.
struct Leg
{
    const char16_t *phase; ///< begins here; null goes on with the phase before
    double length;         ///< metres of a straight, seconds of a hold at standstill, radius of a turn
    double turn;           ///< degrees, left positive; 0 is a straight
    double exitSpeed;      ///< metres per second
    double exitHeight;     ///< metres
    double exitPitch;      ///< degrees
};

// A twin-engine airliner of the smaller kind: rotates at 66 m/s (128 knots), flies the circuit at 1500 feet and 92 m/s
// (179 knots), turns with 1900 m radius (24 degrees of bank), comes down final at 3 degrees and 71 m/s (138 knots).
constexpr Leg legs[] = {
    {u"parked", 10, 0, 0, 0, 0},       {u"engine start", 35, 0, 0, 0, 0},
    {u"taxi out", 40, 0, 7, 0, 0}, // from the stand at 400 m along, 280 m left, nose towards the runway
    {nullptr, 40, -90, 7, 0, 0},       {nullptr, 80, 0, 12, 0, 0},
    {nullptr, 160, 0, 12, 0, 0},       {nullptr, 80, 0, 7, 0, 0},
    {nullptr, 40, 90, 7, 0, 0},        {nullptr, 120, 0, 7, 0, 0},
    {u"line-up", 40, 90, 7, 0, 0},     {nullptr, 40, 0, 0, 0, 0},
    {nullptr, 8, 0, 0, 0, 0},          {u"take-off", 990, 0, 66, 0, 0},
    {nullptr, 288.4, 0, 75, 0, 9},     {u"climb", 600, 0, 82, 70, 14},
    {nullptr, 2241.6, 0, 90, 340, 11}, {u"crosswind", 1900, 90, 92, 457, 5},
    {nullptr, 1900, 90, 92, 457, 4},   {u"downwind", 5200, 0, 92, 457, 4},
    {nullptr, 2400, 0, 85, 457, 4.5},  {u"base", 1900, 90, 80, 330, 3},
    {nullptr, 1900, 90, 74, 196.5, 2}, {u"final", 3500, 0, 71, 13.1, 2},
    {u"flare", 250, 0, 69, 0, 5},      {u"roll-out", 279.4, 0, 58, 0, 1},
    {nullptr, 627.8, 0, 15, 0, 0},     {nullptr, 102.8, 0, 8, 0, 0},
    {u"vacate", 40, 90, 8, 0, 0},      {nullptr, 120, 0, 8, 0, 0},
    {nullptr, 40, 90, 8, 0, 0},        {u"taxi in", 100, 0, 15, 0, 0},
    {nullptr, 620, 0, 15, 0, 0},       {nullptr, 100, 0, 8, 0, 0},
    {nullptr, 40, -90, 8, 0, 0},       {nullptr, 80, 0, 6, 0, 0},
    {nullptr, 50, 180, 6, 0, 0},       {nullptr, 40, 0, 0, 0, 0},
    {u"shutdown", 20, 0, 0, 0, 0},
};

/// A surface that starts to move some seconds after the start of a phase.
struct Move
{
    const char16_t *phase;
    double after; ///< seconds
    Channel channel;
    double target;
    double perSecond;
};

constexpr Move moves[] = {
    {u"taxi out", 5, Flaps, 0.25, 0.05}, {u"climb", 22, Flaps, 0, 0.04}, {u"downwind", 40, Flaps, 0.25, 0.05},
    {u"base", 5, Flaps, 0.625, 0.05},    {u"final", 2, Flaps, 1, 0.05},  {u"roll-out", 4, Speedbrake, 1, 0.5},
    {u"vacate", 0, Speedbrake, 0, 0.25}, {u"vacate", 8, Flaps, 0, 0.05},
};

constexpr double startAlong = 400;
constexpr double startLeft = 280;
constexpr double startAngle = -M_PI_2;
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

std::vector<Piece> layOut()
{
    std::vector<Piece> pieces;
    Piece next{.leg = nullptr, .along = startAlong, .left = startLeft, .angle = startAngle};
    for (const Leg &leg : legs) {
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
    const auto count = static_cast<std::size_t>(std::ceil(last.start + last.seconds)); // the last hold fills it up
    std::vector<Knot> knots;
    knots.reserve(count);
    std::size_t current = 0;
    for (std::size_t second = 0; second < count; ++second) {
        const auto time = static_cast<double>(second);
        while (current + 1 < pieces.size() && pieces[current + 1].start <= time)
            ++current;
        knots.push_back(pieces[current].at(time));
    }
    return knots;
}

/// The knot `offset` seconds away on the closed loop, with the angle carried on.
Knot around(const std::vector<Knot> &knots, std::size_t index, int offset)
{
    const auto count = static_cast<int>(knots.size());
    const int wanted = static_cast<int>(index) + offset;
    Knot knot = knots[static_cast<std::size_t>((wanted + count) % count)];
    if (wanted < 0)
        knot[Angle] -= angleOfLoop();
    else if (wanted >= count)
        knot[Angle] += angleOfLoop();
    return knot;
}

/// Takes the corners off: each knot becomes the mean of its neighbourhood.
std::vector<Knot> smoothed(const std::vector<Knot> &knots)
{
    std::vector<Knot> result(knots.size());
    for (std::size_t i = 0; i < knots.size(); ++i) {
        for (int offset = -smoothingSeconds; offset <= smoothingSeconds; ++offset) {
            const Knot neighbour = around(knots, i, offset);
            for (std::size_t channel = 0; channel < channelCount; ++channel)
                result[i][channel] += neighbour[channel] / (2 * smoothingSeconds + 1);
        }
    }
    return result;
}

/// Bank in the air and nose wheel on the ground, as the turns demand.
void steer(std::vector<Knot> &knots)
{
    for (std::size_t i = 0; i < knots.size(); ++i) {
        const Knot before = around(knots, i, -1);
        const Knot after = around(knots, i, 1);
        const double speed = std::hypot(after[Along] - before[Along], after[Left] - before[Left]) / 2;
        const double leftTurn = (after[Angle] - before[Angle]) / 2; // radians per second
        const double airborne = std::clamp((knots[i][Height] - 3) / 27, 0.0, 1.0);
        knots[i][Bank] = -airborne * qRadiansToDegrees(std::atan(speed * leftTurn / gravity));
        knots[i][Steer] =
            knots[i][Height] > 0.1 || speed < 0.5 ? 0 : -qRadiansToDegrees(std::atan(wheelBase * leftTurn / speed));
    }
}

void moveSurfaces(CircuitPlan &plan)
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

double angleOfLoop()
{
    return 4 * M_PI;
}

double CircuitPlan::startOf(const QString &phase) const
{
    const auto found = std::find_if(phases.begin(), phases.end(), [&](const Phase &p) { return p.name == phase; });
    return found == phases.end() ? -1 : found->start;
}

CircuitPlan planCircuit()
{
    CircuitPlan plan;
    const std::vector<Piece> pieces = layOut();
    for (const Piece &piece : pieces) {
        if (piece.leg->phase)
            plan.phases.push_back({QString::fromUtf16(piece.leg->phase), piece.start});
    }
    plan.knots = smoothed(sampleEachSecond(pieces));
    steer(plan.knots);
    moveSurfaces(plan);
    return plan;
}

} // namespace tarvo::practice
