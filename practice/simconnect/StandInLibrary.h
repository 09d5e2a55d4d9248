#pragma once

#include "simulator/msfs/simconnect/SimConnectLibrary.h"

#include <memory>

namespace tarvo::practice {

class SimConnectStandIn;

/// SimConnect's library as the stand-in has it.
class StandInLibrary : public simulator::msfs::SimConnectLibrary
{
public:
    explicit StandInLibrary(std::weak_ptr<SimConnectStandIn *> standIn);

    quint32 load(const QString &name) override;
    void *entryPoint(const char *name) override;
    void free() override;

private:
    std::weak_ptr<SimConnectStandIn *> m_standIn;
};

} // namespace tarvo::practice
