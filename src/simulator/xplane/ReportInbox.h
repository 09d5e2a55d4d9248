#pragma once

#include "simulator/xplane/PluginReports.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace tarvo::simulator::xplane {

/// The plugin's reports on their way to the main thread. Bounded by their number and by the bytes of their messages, so
/// that no plugin can fill the memory while the main thread stands still.
class ReportInbox
{
public:
    static constexpr std::size_t mostReports = 8192;
    static constexpr std::size_t mostBytes = std::size_t{4} * 1024 * 1024;

    enum class Put
    {
        Kept,
        KeptFirst, ///< and a drain is to be scheduled: none is yet
        Refused,   ///< there is no room
    };

    /// `bytes`: the size of the message.
    Put put(PluginReport report, std::size_t bytes);
    /// The oldest report; none when there is none.
    std::optional<PluginReport> take();

    /// A drain begins: the next report schedules another.
    void beginDrain();
    /// The drain stops early. True when another is to be scheduled: something is left, and none is scheduled yet.
    bool stopDrain();

private:
    struct Kept
    {
        PluginReport report;
        std::size_t bytes;
    };

    std::mutex m_mutex; ///< held for moments only; guards what follows
    std::deque<Kept> m_reports;
    std::size_t m_bytes = 0;
    bool m_drainIsScheduled = false;
};

} // namespace tarvo::simulator::xplane
