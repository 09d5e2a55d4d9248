#include "manager/AtisBuffers.h"

namespace tarvo::manager {

void AtisBuffers::begin(const QString &callsign)
{
    if (m_buffers.size() >= maximumStations && !m_buffers.contains(callsign))
        m_buffers.erase(m_buffers.cbegin());
    m_buffers.insert(callsign, {});
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
