#include "practice/flight/Patterns.h"

#include <QtMath>

namespace tarvo::practice {

namespace {
// A twin-engine airliner of the smaller kind: rotates at 66 m/s (128 knots), flies the circuit at 1500 feet and 92 m/s
// (179 knots), turns with 1900 m radius (24 degrees of bank), comes down final at 3 degrees and 71 m/s (138 knots).
constexpr Leg homeLegs[] = {
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

constexpr Move homeMoves[] = {
    {u"taxi out", 5, Flaps, 0.25, 0.05}, {u"climb", 22, Flaps, 0, 0.04}, {u"downwind", 40, Flaps, 0.25, 0.05},
    {u"base", 5, Flaps, 0.625, 0.05},    {u"final", 2, Flaps, 1, 0.05},  {u"roll-out", 4, Speedbrake, 1, 0.5},
    {u"vacate", 0, Speedbrake, 0, 0.25}, {u"vacate", 8, Flaps, 0, 0.05},
};

constexpr Cue homeCues[] = {
    {u"parked", 3, &AircraftState::avionics, true},
    {u"parked", 5, &AircraftState::navLights, true},
    {u"engine start", 0, &AircraftState::beacon, true},
    {u"engine start", 8, &AircraftState::engine2, true},
    {u"engine start", 24, &AircraftState::engine1, true},
    {u"taxi out", 0, &AircraftState::taxiLights, true},
    {u"line-up", 0, &AircraftState::strobes, true},
    {u"line-up", 2, &AircraftState::landingLights, true},
    {u"line-up", 4, &AircraftState::modeC, true},
    {u"climb", 5, &AircraftState::gearDown, false},
    {u"climb", 9, &AircraftState::taxiLights, false},
    {u"base", 0, &AircraftState::gearDown, true},
    {u"base", 6, &AircraftState::speedbrakeArmed, true},
    {u"final", 0, &AircraftState::taxiLights, true},
    {u"roll-out", 4, &AircraftState::speedbrakeArmed, false},
    {u"roll-out", 5, &AircraftState::reverse, true},
    {u"roll-out", 18, &AircraftState::reverse, false},
    {u"vacate", 4, &AircraftState::landingLights, false},
    {u"vacate", 6, &AircraftState::strobes, false},
    {u"vacate", 9, &AircraftState::modeC, false},
    {u"shutdown", 1, &AircraftState::taxiLights, false},
    {u"shutdown", 5, &AircraftState::engine1, false},
    {u"shutdown", 6, &AircraftState::engine2, false},
    {u"shutdown", 10, &AircraftState::beacon, false},
    {u"shutdown", 14, &AircraftState::navLights, false},
    {u"shutdown", 17, &AircraftState::avionics, false},
};

// The same aeroplane that never lands: each approach ends as a go-around, 60 m above the runway. 1000 feet is well
// below the circuit at home where the two cross.
constexpr Leg goAroundLegs[] = {
    {u"go-around", 1500, 0, 80, 140, 9}, {u"climb", 2500, 0, 90, 305, 7},    {u"crosswind", 1900, 90, 92, 305, 4},
    {nullptr, 1900, 90, 92, 305, 4},     {u"downwind", 4600, 0, 92, 305, 4}, {nullptr, 2400, 0, 85, 305, 4.5},
    {u"base", 1900, 90, 80, 270, 3},     {nullptr, 1900, 90, 74, 217, 2},    {u"final", 3000, 0, 71, 60, 2},
};

constexpr Move goAroundMoves[] = {
    {u"go-around", 0, Flaps, 1, 1},           {u"go-around", 3, Flaps, 0.25, 0.05}, {u"climb", 15, Flaps, 0, 0.05},
    {u"downwind", 30, Flaps, 0.25, 0.05},     {u"base", 5, Flaps, 0.625, 0.05},     {u"final", 2, Flaps, 1, 0.05},
    {u"downwind", 40, Speedbrake, 0.5, 0.25}, {u"base", 0, Speedbrake, 0, 0.25},
};

constexpr Cue goAroundCues[] = {
    {u"go-around", 0, &AircraftState::avionics, true},   {u"go-around", 0, &AircraftState::engine1, true},
    {u"go-around", 0, &AircraftState::engine2, true},    {u"go-around", 0, &AircraftState::navLights, true},
    {u"go-around", 0, &AircraftState::beacon, true},     {u"go-around", 0, &AircraftState::strobes, true},
    {u"go-around", 0, &AircraftState::modeC, true},      {u"go-around", 0, &AircraftState::landingLights, true},
    {u"go-around", 0, &AircraftState::taxiLights, true}, {u"go-around", 5, &AircraftState::gearDown, false},
    {u"climb", 4, &AircraftState::taxiLights, false},    {u"climb", 20, &AircraftState::landingLights, false},
    {u"base", 0, &AircraftState::gearDown, true},        {u"base", 0, &AircraftState::landingLights, true},
    {u"final", 0, &AircraftState::taxiLights, true},
};

constexpr Leg taxiLegs[] = {
    {u"hold", 15, 0, 0, 0, 0},   {u"taxi", 60, 0, 9, 0, 0}, // a rectangle with rounded corners, clockwise
    {nullptr, 300, 0, 9, 0, 0},  {nullptr, 100, 0, 6, 0, 0}, {nullptr, 40, -90, 6, 0, 0}, {nullptr, 60, 0, 6, 0, 0},
    {nullptr, 40, -90, 6, 0, 0}, {nullptr, 100, 0, 9, 0, 0}, {nullptr, 300, 0, 9, 0, 0},  {nullptr, 100, 0, 6, 0, 0},
    {nullptr, 40, -90, 6, 0, 0}, {nullptr, 60, 0, 6, 0, 0},  {nullptr, 40, -90, 6, 0, 0}, {nullptr, 40, 0, 0, 0, 0},
    {u"hold", 5, 0, 0, 0, 0},
};

constexpr Cue taxiCues[] = {
    {u"hold", 0, &AircraftState::avionics, true}, {u"hold", 0, &AircraftState::engine1, true},
    {u"hold", 0, &AircraftState::engine2, true},  {u"hold", 0, &AircraftState::navLights, true},
    {u"hold", 0, &AircraftState::beacon, true},   {u"taxi", 0, &AircraftState::taxiLights, true},
};

constexpr Leg holdingLegs[] = {{u"holding", 120, 0, 0, 0, 0}};

constexpr Move holdingMoves[] = {{u"holding", 0, Flaps, 0.25, 1}};

constexpr Cue holdingCues[] = {
    {u"holding", 0, &AircraftState::avionics, true}, {u"holding", 0, &AircraftState::engine1, true},
    {u"holding", 0, &AircraftState::engine2, true},  {u"holding", 0, &AircraftState::navLights, true},
    {u"holding", 0, &AircraftState::beacon, true},   {u"holding", 0, &AircraftState::taxiLights, true},
    {u"holding", 0, &AircraftState::modeC, true},
};

// 125 m/s (243 knots) and turns with 23 degrees of bank, between 5000 and 8000 feet.
constexpr Leg racetrackLegs[] = {
    {u"climb", 9000, 0, 125, 2440, 4},
    {nullptr, 3700, 180, 125, 2440, 3},
    {u"descent", 9000, 0, 125, 1525, 1},
    {nullptr, 3700, 180, 125, 1525, 3},
};

constexpr Cue racetrackCues[] = {
    {u"climb", 0, &AircraftState::avionics, true},        {u"climb", 0, &AircraftState::engine1, true},
    {u"climb", 0, &AircraftState::engine2, true},         {u"climb", 0, &AircraftState::navLights, true},
    {u"climb", 0, &AircraftState::beacon, true},          {u"climb", 0, &AircraftState::strobes, true},
    {u"climb", 0, &AircraftState::modeC, true},           {u"climb", 0, &AircraftState::gearDown, false},
    {u"descent", 0, &AircraftState::landingLights, true},
};
} // namespace

const Pattern &homeCircuit()
{
    static const Pattern pattern{.legs = homeLegs,
                                 .moves = homeMoves,
                                 .cues = homeCues,
                                 .startAlong = 400,
                                 .startLeft = 280,
                                 .startAngle = -M_PI_2};
    return pattern;
}

const Pattern &westCircuit()
{
    static const Pattern pattern{.legs = goAroundLegs,
                                 .moves = goAroundMoves,
                                 .cues = goAroundCues,
                                 .startSpeed = 71,
                                 .startHeight = 60,
                                 .startPitch = 2,
                                 .east = -1960,
                                 .north = 250};
    return pattern;
}

const Pattern &apronTaxi()
{
    static const Pattern pattern{.legs = taxiLegs, .moves = {}, .cues = taxiCues, .startAlong = 300, .startLeft = -220};
    return pattern;
}

const Pattern &holdingPoint()
{
    static const Pattern pattern{
        .legs = holdingLegs, .moves = holdingMoves, .cues = holdingCues, .startLeft = -100, .startAngle = M_PI_2};
    return pattern;
}

const Pattern &racetrack()
{
    static const Pattern pattern{.legs = racetrackLegs,
                                 .moves = {},
                                 .cues = racetrackCues,
                                 .startAlong = -3000,
                                 .startLeft = -4500,
                                 .startSpeed = 125,
                                 .startHeight = 1525,
                                 .startPitch = 3};
    return pattern;
}

} // namespace tarvo::practice
