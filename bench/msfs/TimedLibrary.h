#pragma once

#include "simulator/msfs/simconnect/SimConnectLibrary.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace tarvo::bench {

/// SimConnect's library with a watch in it: tells of each waypoint when the client calls for it, then hands the call
/// on to the one behind it. One at a time.
class TimedLibrary : public simulator::msfs::SimConnectLibrary
{
public:
    using Receiver = std::function<void(std::uint32_t object, double latitude, std::int64_t nowNs)>;

    TimedLibrary(std::unique_ptr<simulator::msfs::SimConnectLibrary> library, Receiver receiver);
    ~TimedLibrary() override;

    quint32 load(const QString &name) override { return m_library->load(name); }
    void *entryPoint(const char *name) override;
    void free() override { m_library->free(); }

private:
    std::unique_ptr<simulator::msfs::SimConnectLibrary> m_library;
};

} // namespace tarvo::bench
