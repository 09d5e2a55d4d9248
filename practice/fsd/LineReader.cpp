#include "practice/fsd/LineReader.h"

#include <utility>

namespace tarvo::practice {

QList<QByteArray> LineReader::feed(const QByteArray &chunk)
{
    QList<QByteArray> lines;
    m_partial += chunk;
    qsizetype from = 0;
    for (qsizetype end = m_partial.indexOf("\r\n"); end >= 0; end = m_partial.indexOf("\r\n", from)) {
        if (m_skipping)
            m_skipping = false; // counted when it began
        else if (end - from > m_maxLineBytes)
            ++m_overlong;
        else if (end > from)
            lines.append(m_partial.mid(from, end - from));
        from = end + 2;
    }
    m_partial.remove(0, from);
    if (m_partial.size() > m_maxLineBytes + 1) { // one more: its carriage return may be there already
        if (!m_skipping)
            ++m_overlong;
        m_skipping = true;
    }
    if (m_skipping)
        m_partial = m_partial.endsWith('\r') ? QByteArray("\r") : QByteArray();
    return lines;
}

int LineReader::takeOverlong()
{
    return std::exchange(m_overlong, 0);
}

} // namespace tarvo::practice
