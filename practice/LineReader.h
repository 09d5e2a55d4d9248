#pragma once

#include <QByteArray>
#include <QList>

namespace tarvo::practice {

/// Cuts a byte stream into lines. A line longer than the limit is dropped as it comes, so that memory stays bounded
/// whatever is sent.
class LineReader
{
public:
    /// `end`: what each line ends with, such as "\r\n".
    LineReader(const QByteArray &end, qsizetype maxLineBytes) : m_end(end), m_maxLineBytes(maxLineBytes) {}

    /// The lines that are complete now, without their ends; empty ones, too.
    QList<QByteArray> feed(const QByteArray &chunk);
    /// How many lines were too long since the last call.
    int takeOverlong();

private:
    QByteArray m_end;
    qsizetype m_maxLineBytes;
    QByteArray m_partial;
    bool m_skipping = false; ///< inside a line that is too long already
    int m_overlong = 0;
};

} // namespace tarvo::practice
