#include "manager/AtisBuffers.h"

#include "common/Callsign.h"

#include <algorithm>

namespace tarvo::manager {

void AtisBuffers::begin(const QString &callsign)
{
    if (callsign.size() > common::longestCallsign)
        return;
    if (m_buffers.size() >= maximumStations && !m_buffers.contains(callsign))
        m_buffers.erase(longestAgo());
    m_buffers.insert(callsign, {.lines = {}, .characters = 0, .order = ++m_lastOrder});
}

AtisBuffers::Buffers::iterator AtisBuffers::longestAgo()
{
    return std::min_element(m_buffers.begin(), m_buffers.end(),
                            [](const Buffer &a, const Buffer &b) { return a.order < b.order; });
}

void AtisBuffers::append(const QString &callsign, const QString &line)
{
    const auto found = m_buffers.find(callsign);
    if (found == m_buffers.end())
        return;
    if (found->lines.size() >= maximumLines || found->characters + line.size() > maximumCharacters)
        return;
    found->lines.append(line);
    found->characters += line.size();
}

std::optional<QStringList> AtisBuffers::take(const QString &callsign)
{
    const auto found = m_buffers.constFind(callsign);
    if (found == m_buffers.cend())
        return {};
    QStringList lines = found->lines;
    m_buffers.erase(found);
    return lines;
}

} // namespace tarvo::manager
