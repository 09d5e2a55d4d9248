#pragma once

#include <QtGlobal>

namespace tarvo::model {
struct UserAircraftData;
}

namespace tarvo::simulator {
enum class SimulatorType : quint8;
}

namespace tarvo::simulator::xplane {

// The altitude rules of X-Plane. `version` is its internal version number, such as 120105; from 120000 on the simulator
// models the altimeter's temperature error.

/// Feet, for the pressure field of position reports.
double pressureAltitudeFeet(const model::UserAircraftData &own, int version);

/// Feet, for the true altitude field of position reports.
double trueAltitudeFeet(const model::UserAircraftData &own, int version);

/// Where an aircraft that reports `altitudeFeet` is to be drawn. Near the own altitude it is shifted by the whole local
/// temperature error; from 3000 feet apart the shift fades, and 6000 feet apart it is gone.
double adjustRemoteAltitude(double altitudeFeet, const model::UserAircraftData &own, int version);

/// X-Plane 10, 11 or 12; Unknown below 100000.
SimulatorType simulatorTypeOf(int version);

} // namespace tarvo::simulator::xplane
