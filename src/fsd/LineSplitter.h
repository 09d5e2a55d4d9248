#pragma once

#include <QString>
#include <QStringList>

namespace tarvo::fsd {

/// Cuts the decoded byte stream into lines. What follows the last line end waits for the next chunk.
class LineSplitter
{
public:
    /// Characters that may wait for their line end. The protocol sets no limit; without one a server that never ends
    /// its line could fill the memory.
    static constexpr qsizetype maximumPartial = 1 << 20;

    /// Appends the lines that `chunk` completes to `lines`, without their line ends; empty ones too. A chunk of exactly
    /// one character loses it. A partial line above the limit is dropped with a line in the log.
    void feed(QString chunk, QStringList &lines);
    /// Forgets the partial line.
    void reset() { m_partial.clear(); }
    /// Text after the last line end.
    const QString &partial() const { return m_partial; }

private:
    QString m_partial;
};

} // namespace tarvo::fsd
