#include "practice/voice/ControlLines.h"

#include <utility>

namespace tarvo::practice {

QList<QByteArray> ControlLines::feed(const QByteArray &chunk)
{
    QList<QByteArray> lines;
    m_partial += chunk;
    qsizetype from = 0;
    for (qsizetype end = m_partial.indexOf('\n'); end >= 0; end = m_partial.indexOf('\n', from)) {
        if (m_skipping)
            m_skipping = false; // counted when it began
        else if (end - from > m_maxLineBytes)
            ++m_overlong;
        else
            lines.append(m_partial.mid(from, end - from));
        from = end + 1;
    }
    m_partial.remove(0, from);
    if (m_partial.size() > m_maxLineBytes) {
        if (!m_skipping)
            ++m_overlong;
        m_skipping = true;
    }
    if (m_skipping)
        m_partial.clear();
    return lines;
}

int ControlLines::takeOverlong()
{
    return std::exchange(m_overlong, 0);
}

} // namespace tarvo::practice
