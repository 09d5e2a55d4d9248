#include "voice/transport/Inbox.h"

#include <utility>

namespace tarvo::voice {

namespace {

bool isLine(const Report &report)
{
    return std::holds_alternative<ControlMessage>(report) || std::holds_alternative<report::BadLine>(report);
}

} // namespace

bool Inbox::say(Report report)
{
    const std::lock_guard lock(m_mutex);
    return put(std::move(report));
}

bool Inbox::putLine(Report report)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_lines < mostLines || m_isClosed; });
    if (m_isClosed)
        return false;
    ++m_lines;
    return put(std::move(report));
}

bool Inbox::putPacket(VoicePacket packet)
{
    const std::lock_guard lock(m_mutex);
    if (m_packets == mostPackets) {
        ++m_dropped;
        return false;
    }
    ++m_packets;
    return put(std::move(packet));
}

void Inbox::close()
{
    const std::lock_guard lock(m_mutex);
    m_isClosed = true;
    m_changed.notify_all();
}

std::optional<Report> Inbox::take()
{
    const std::lock_guard lock(m_mutex);
    if (m_reports.empty()) {
        m_isOwnerTold = false;
        return std::nullopt;
    }
    Report report = std::move(m_reports.front());
    m_reports.pop_front();
    if (std::holds_alternative<VoicePacket>(report))
        --m_packets;
    else if (isLine(report) && --m_lines == mostLines / 2) // for each single place would switch threads at each line
        m_changed.notify_all();
    return report;
}

quint64 Inbox::takeDropped()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_dropped, 0);
}

/// Under the lock.
bool Inbox::put(Report report)
{
    m_reports.push_back(std::move(report));
    return !std::exchange(m_isOwnerTold, true);
}

} // namespace tarvo::voice
