#pragma once

#include "manager/SessionContext.h"
#include "simulator/Simulator.h"

namespace tarvo::manager {

/// Shows a text of the client's own in the simulator, if there is one. `colour`: 24-bit RGB.
inline void showNotification(const SessionContext &session, const QString &message, int colour)
{
    if (const std::shared_ptr<simulator::Simulator> simulator = session.simulator)
        simulator->showNotification(message, colour);
}

} // namespace tarvo::manager
