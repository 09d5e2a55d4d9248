#pragma once

#include "simulator/msfs/simvar/MsfsRuntimeProfile.h"

#include <QString>

namespace tarvo::simulator::msfs {

class SimConnectLink;
struct RemotePosition;

/// What is to be put into the simulator.
struct RemoteModel
{
    QString title;    ///< of the model
    QString livery;   ///< sent to 2024 alone
    QString callsign; ///< its first 11 characters become the tail number
};

/// The other pilots' aircraft in the simulator.
class RemoteObjects
{
public:
    /// `waypointIsDefined` outlives this; it tells whether the definition for moving was ever made.
    RemoteObjects(SimConnectLink &link, bool &waypointIsDefined);

    enum class Creation
    {
        Submitted,
        Refused, ///< by the simulator
        NotTried
    };
    Creation create(quint32 requestId, const RemoteModel &model, const RemotePosition &position,
                    MsfsRuntimeProfile profile);
    /// True when the simulator took the wish; else the link has told of it.
    bool remove(quint32 object, quint32 requestId);
    /// Gives it the place to fly to and its speed. The link tells of a failure.
    void move(quint32 object, const RemotePosition &position);

private:
    bool defineWaypoint();

    SimConnectLink &m_link;
    bool &m_waypointIsDefined;
};

} // namespace tarvo::simulator::msfs
