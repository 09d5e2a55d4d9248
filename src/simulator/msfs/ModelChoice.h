#pragma once

#include "simulator/msfs/library/MsfsModelMatch.h"

#include <QString>

namespace tarvo::model {
struct RemoteAircraft;
}

namespace tarvo::simulator::msfs {

class MsfsAircraftLibrary;
struct MsfsRemoteState;

/// The model that is to stand for another pilot, and what led to it.
struct ModelChoice
{
    MsfsModelMatch match;
    QString strategy;            ///< "type_airline_livery", "type_airline_livery_fallback" or "peer_hint"
    QString airline;             ///< what was matched: the callsign's, else what the pilot told
    QString callsignAirlineHint; ///< empty without one
    bool fromPeerHint = false;
};

/// Asks a library that is ready. Logs a model of the other simulator, which is never taken, and a pilot's own model
/// that is not to be had here.
ModelChoice chooseModel(MsfsAircraftLibrary &library, MsfsRuntimeProfile profile,
                        const model::RemoteAircraft &aircraft);

/// The livery for the simulator: the model's own, else what the pilot told.
QString liveryFor(const MsfsModelMatch &match, const model::RemoteAircraft &aircraft);

/// Whether the choice leaves what is in the simulator as it is. A livery counts by the model that it leads to: a new
/// text alone changes nothing.
bool isSameDecision(const MsfsRemoteState &before, const ModelChoice &choice, const model::RemoteAircraft &aircraft);

} // namespace tarvo::simulator::msfs
