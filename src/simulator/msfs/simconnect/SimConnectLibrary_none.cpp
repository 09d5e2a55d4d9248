#include "simulator/msfs/simconnect/SimConnectLibrary.h"

namespace tarvo::simulator::msfs {

namespace {

/// A system without the simulator: no library is ever found.
class NoLibrary : public SimConnectLibrary
{
public:
    quint32 load(const QString &) override { return 126; } // Windows' ERROR_MOD_NOT_FOUND
    void *entryPoint(const char *) override { return nullptr; }
    void free() override {}
};

} // namespace

std::unique_ptr<SimConnectLibrary> systemSimConnectLibrary()
{
    return std::make_unique<NoLibrary>();
}

} // namespace tarvo::simulator::msfs
