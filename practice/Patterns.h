#pragma once

#include "practice/Circuit.h"

namespace tarvo::practice {

/// Stand to stand at runway 36R: taxi, take-off, left circuit, landing, taxi back. What the pilot's own X-Plane flies.
const Pattern &homeCircuit();
/// The same from the parallel runway 36L, out of the way of whoever flies the one at home.
const Pattern &westCircuit();
/// Round and round on the apron east of runway 36R, with a stop each time. Phases "hold" and "taxi".
const Pattern &apronTaxi();
/// Stands at the holding point of runway 36R, on its east side, ready for departure. Phase "holding".
const Pattern &holdingPoint();
/// A racetrack high above the field, climbing on one leg and descending on the other. Phases "climb" and "descent".
const Pattern &racetrack();

} // namespace tarvo::practice
