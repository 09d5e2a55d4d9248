#include "fsd/LineSplitter.h"

#include <QDebug>

#include <utility>

namespace tarvo::fsd {

namespace {
constexpr QLatin1StringView lineEnd{"\r\n"};
} // namespace

void LineSplitter::feed(QString chunk, QStringList &lines)
{
    // A single character that arrives by itself is lost: kept on purpose.
    if (chunk.size() < 2)
        return;

    // The partial line holds no line end; one may straddle its last character and the chunk's first.
    qsizetype searchFrom = 0;
    if (m_partial.isEmpty()) {
        m_partial = std::move(chunk);
    } else {
        searchFrom = m_partial.size() - 1;
        m_partial += chunk;
    }

    qsizetype start = 0;
    for (qsizetype end = m_partial.indexOf(lineEnd, searchFrom); end >= 0; end = m_partial.indexOf(lineEnd, start)) {
        lines.append(m_partial.sliced(start, end - start));
        start = end + lineEnd.size();
    }
    m_partial.remove(0, start);

    if (m_partial.size() > maximumPartial) {
        qWarning() << "FSD line without an end dropped after" << m_partial.size() << "characters";
        m_partial.clear();
    }
}

} // namespace tarvo::fsd
