#pragma once

#include "simulator/msfs/simvar/MsfsRuntimeProfile.h"
#include "simulator/msfs/simvar/SimKey.h"

#include <QMap>

#include <optional>

namespace tarvo::simulator::msfs {

class SimConnectLink;

/// The events that the client sends to the simulator, each made known to it before its first use.
class ClientEvents
{
public:
    explicit ClientEvents(SimConnectLink &link);

    /// To the pilot's own aircraft. The link tells of a failure.
    void send(CommandKey key, quint32 data, MsfsRuntimeProfile profile);

    /// As in the beginning; nothing is told to the simulator.
    void reset() { m_ids.clear(); }

private:
    std::optional<quint32> map(CommandKey key, const char *event);

    SimConnectLink &m_link;
    QMap<CommandKey, quint32> m_ids;
};

} // namespace tarvo::simulator::msfs
