#pragma once

#include "practice/flight/Circuit.h"

namespace tarvo::practice {

/// Stand to stand at runway 36R: taxi, take-off, left circuit, landing, taxi back. What the pilot's own X-Plane flies.
const Pattern &homeCircuit();
/// Left circuits at 1000 feet over the parallel runway 36L, each with an approach that ends as a go-around: always in
/// the air. Phases "go-around", "climb", "crosswind", "downwind", "base" and "final".
const Pattern &westCircuit();
/// Round and round on the apron east of runway 36R, with a stop each time. Phases "hold" and "taxi".
const Pattern &apronTaxi();
/// Stands at the holding point of runway 36R, on its east side, ready for departure. Phase "holding".
const Pattern &holdingPoint();
/// A racetrack high above the field, climbing on one leg and descending on the other. Phases "climb" and "descent".
const Pattern &racetrack();

} // namespace tarvo::practice
