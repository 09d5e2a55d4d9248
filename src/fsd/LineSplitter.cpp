#include "fsd/LineSplitter.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace tarvo::fsd {

namespace {

constexpr QLatin1StringView lineEnd{"\r\n"};

/// Where the next line end begins, or -1. Qt looks for one character many times as fast as for two.
qsizetype lineEndIn(QStringView text, qsizetype from)
{
    for (qsizetype feed = from; (feed = text.indexOf(lineEnd.back(), feed)) >= 0; ++feed) {
        if (feed > from && text[feed - 1] == lineEnd.front())
            return feed - 1;
    }
    return -1;
}

void warnOfDropped(qsizetype size)
{
    qWarning() << "FSD line dropped, too long:" << size << "characters or more";
}

} // namespace

void LineSplitter::feed(const QString &chunk)
{
    // A single character that arrives by itself is lost: kept on purpose.
    if (chunk.size() < 2)
        return;
    m_text.remove(0, m_start);
    m_searchFrom -= m_start;
    m_start = 0;
    m_text += chunk;
}

std::optional<QString> LineSplitter::take()
{
    for (qsizetype end; (end = lineEndIn(m_text, m_searchFrom)) >= 0;) {
        const qsizetype start = std::exchange(m_start, end + lineEnd.size());
        m_searchFrom = m_start;
        const qsizetype size = end - start;
        if (std::exchange(m_skipping, false))
            continue;
        if (size <= longestLine)
            return m_text.sliced(start, size);
        warnOfDropped(size);
    }
    // One may straddle the last character and the next chunk's first.
    m_searchFrom = std::max(m_start, m_text.size() - 1);
    dropPartialIfTooLong();
    return std::nullopt;
}

void LineSplitter::dropPartialIfTooLong()
{
    const bool endsInReturn = m_text.endsWith(lineEnd.front());
    const qsizetype size = waiting() - (endsInReturn ? 1 : 0);
    if (!m_skipping && size <= longestLine)
        return;
    if (!std::exchange(m_skipping, true))
        warnOfDropped(size);
    reset();
    m_skipping = true;
    if (endsInReturn)
        m_text = lineEnd.first(1);
}

void LineSplitter::forgetPartial()
{
    const qsizetype end = m_text.lastIndexOf(lineEnd);
    if (end < m_searchFrom)
        reset();
    else
        m_text.truncate(end + lineEnd.size());
}

void LineSplitter::reset()
{
    m_text.clear();
    m_start = 0;
    m_searchFrom = 0;
    m_skipping = false;
}

} // namespace tarvo::fsd
