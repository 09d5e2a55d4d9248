#pragma once

#include <QString>

#include <optional>

namespace tarvo::fsd {

/// Cuts the decoded byte stream into lines. What follows the last line end waits for the next chunk.
class LineSplitter
{
public:
    /// Characters of a line, its end not counted. The protocol sets no limit; a longer line is dropped, with a line in
    /// the log, so that neither it nor what it holds can keep the program busy.
    static constexpr qsizetype longestLine = 16 * 1024;

    /// Adds a chunk to what waits. A chunk of exactly one character loses it.
    void feed(const QString &chunk);
    /// The next complete line without its end, which may be empty; no value when there is none.
    std::optional<QString> take();
    /// Characters that wait, complete lines and the partial one.
    qsizetype waiting() const { return m_text.size() - m_start; }
    /// Forgets what follows the last line end. Complete lines stay.
    void forgetPartial();
    /// Forgets all that waits.
    void reset();

private:
    void dropPartialIfTooLong();

    QString m_text;
    qsizetype m_start = 0;      ///< of the next line in the text
    qsizetype m_searchFrom = 0; ///< no line end begins between the start and this
    bool m_skipping = false;    ///< the next line end is that of a line that was dropped
};

} // namespace tarvo::fsd
