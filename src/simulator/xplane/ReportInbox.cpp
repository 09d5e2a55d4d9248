#include "simulator/xplane/ReportInbox.h"

#include <utility>

namespace tarvo::simulator::xplane {

ReportInbox::Put ReportInbox::put(PluginReport report, std::size_t bytes)
{
    const std::lock_guard lock(m_mutex);
    if (m_reports.size() >= mostReports || m_bytes + bytes > mostBytes)
        return Put::Refused;
    m_reports.push_back({std::move(report), bytes});
    m_bytes += bytes;
    return std::exchange(m_drainIsScheduled, true) ? Put::Kept : Put::KeptFirst;
}

std::optional<PluginReport> ReportInbox::take()
{
    const std::lock_guard lock(m_mutex);
    if (m_reports.empty())
        return std::nullopt;
    PluginReport report = std::move(m_reports.front().report);
    m_bytes -= m_reports.front().bytes;
    m_reports.pop_front();
    return report;
}

void ReportInbox::beginDrain()
{
    const std::lock_guard lock(m_mutex);
    m_drainIsScheduled = false;
}

bool ReportInbox::stopDrain()
{
    const std::lock_guard lock(m_mutex);
    return !m_reports.empty() && !std::exchange(m_drainIsScheduled, true);
}

} // namespace tarvo::simulator::xplane
