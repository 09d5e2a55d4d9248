#pragma once

#include "model/RemoteAircraft.h"
#include "simulator/msfs/library/MsfsModelMatch.h"

#include <QString>

namespace tarvo::simulator::msfs {

/// Another pilot, the model that stands for him, and what has become of it in the simulator.
///
/// Its object: without one all three are 0; while one is being made the request id is set and the create is pending;
/// a live one has its id, and keeps the request id.
struct MsfsRemoteState
{
    model::RemoteAircraft remote;
    MsfsModelMatch match; ///< without a title nothing is put into the simulator
    QString strategy;     ///< how the model was chosen, for the log
    quint32 requestId = 0;
    quint32 objectId = 0; ///< of the session that is or was open
    bool createPending = false;

    bool decided = false; ///< false until the library was ready to be asked

    /// No object, and none on its way.
    void forgetObject()
    {
        requestId = 0;
        objectId = 0;
        createPending = false;
    }
};

} // namespace tarvo::simulator::msfs
