#pragma once

#include <QList>
#include <QString>

namespace tarvo::ui {

/// A bounded log of lines. Appending costs the same however long the session is; the whole text is put together only
/// when somebody asks for it.
class LineLog
{
public:
    /// The oldest lines go beyond this.
    static constexpr qsizetype maximumLines = 2000;
    /// A longer line is cut, so that a hostile text can't fill the memory.
    static constexpr qsizetype maximumLineLength = 4096;

    /// Adds `text` as one line with "[hh:mm:ss] " in front: the local time of `wallMs`, ms since the epoch. Line breaks
    /// inside the text become blanks. Returns the line as stored.
    QString append(qint64 wallMs, const QString &text);
    void clear();
    bool isEmpty() const { return m_lines.isEmpty(); }
    /// All lines, oldest first, with a line feed between two.
    QString text() const;

private:
    QList<QString> m_lines;
    mutable QString m_text;
    mutable bool m_textIsCurrent = true;
};

} // namespace tarvo::ui
