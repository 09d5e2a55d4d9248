#include "voice/transport/LineBuffer.h"

#include <algorithm>
#include <iterator>

namespace tarvo::voice {

std::span<std::uint8_t> LineBuffer::room()
{
    if (m_begin > 0 && m_bytes.size() - m_end < roomSize) {
        std::copy(m_bytes.begin() + static_cast<std::ptrdiff_t>(m_begin),
                  m_bytes.begin() + static_cast<std::ptrdiff_t>(m_end), m_bytes.begin());
        m_scanned -= m_begin;
        m_end -= m_begin;
        m_begin = 0;
    }
    if (m_bytes.size() - m_end < roomSize)
        m_bytes.resize(std::max(2 * m_bytes.size(), m_end + roomSize));
    return std::span(m_bytes).subspan(m_end, roomSize);
}

std::optional<std::string_view> LineBuffer::next()
{
    const auto written = std::span(m_bytes).first(m_end);
    const auto found = std::find(written.begin() + static_cast<std::ptrdiff_t>(m_scanned), written.end(), '\n');
    if (found == written.end()) {
        m_scanned = m_end;
        if (m_end - m_begin > longestUnended)
            m_begin = m_scanned = m_end = 0;
        return std::nullopt;
    }
    const auto end = static_cast<std::size_t>(std::distance(written.begin(), found));
    const std::string_view line(reinterpret_cast<const char *>(&m_bytes[m_begin]), end - m_begin);
    m_begin = m_scanned = end + 1;
    return line;
}

} // namespace tarvo::voice
