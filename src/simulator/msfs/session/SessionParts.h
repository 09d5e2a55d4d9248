#pragma once

#include "common/DropCount.h"
#include "simulator/msfs/session/ClientEvents.h"
#include "simulator/msfs/session/DataGroups.h"
#include "simulator/msfs/session/InputEvents.h"
#include "simulator/msfs/session/RemoteObjects.h"
#include "simulator/msfs/session/SimConnectLink.h"
#include "simulator/msfs/session/SimConnectSession.h"
#include "simulator/msfs/session/TrafficSnapshot.h"
#include "simulator/msfs/session/UserTitle.h"

#include <memory>
#include <utility>

namespace tarvo::simulator::msfs {

/// What a session is made of. Only its two .cpp files include this.
struct SimConnectSession::Parts
{
    Parts(std::shared_ptr<SimConnectBinding> binding, const common::Clock &itsClock, QObject *owner)
        : clock(itsClock), link(std::move(binding), owner), traffic(link, owner)
    {
    }

    static inline bool waypointIsDefined = false; ///< one for the whole program

    const common::Clock &clock;
    SimConnectLink link;
    DataGroups groups{link};
    UserTitle title{link};
    TrafficSnapshot traffic;
    InputEvents inputEvents{link};
    ClientEvents clientEvents{link};
    RemoteObjects remoteObjects{link, waypointIsDefined};
    common::DropCount broken;  ///< messages
    common::DropCount unasked; ///< samples of no group
};

} // namespace tarvo::simulator::msfs
