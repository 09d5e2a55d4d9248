#include "practice/LineReader.h"

#include <utility>

namespace tarvo::practice {

QList<QByteArray> LineReader::feed(const QByteArray &chunk)
{
    QList<QByteArray> lines;
    m_partial += chunk;
    qsizetype from = 0;
    for (qsizetype end = m_partial.indexOf(m_end); end >= 0; end = m_partial.indexOf(m_end, from)) {
        if (m_skipping)
            m_skipping = false; // counted when it began
        else if (end - from > m_maxLineBytes)
            ++m_overlong;
        else
            lines.append(m_partial.mid(from, end - from));
        from = end + m_end.size();
    }
    m_partial.remove(0, from);
    const QByteArray begunEnd = m_end.chopped(1); // may be there already
    if (m_partial.size() > m_maxLineBytes + begunEnd.size()) {
        if (!m_skipping)
            ++m_overlong;
        m_skipping = true;
    }
    if (m_skipping)
        m_partial = m_partial.endsWith(begunEnd) ? begunEnd : QByteArray();
    return lines;
}

int LineReader::takeOverlong()
{
    return std::exchange(m_overlong, 0);
}

} // namespace tarvo::practice
