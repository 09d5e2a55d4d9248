#include "ui/viewmodel/LineLog.h"

#include <QDateTime>
#include <QStringList>

namespace tarvo::ui {

QString LineLog::flattened(const QString &text)
{
    QString line = text.left(maximumLineLength);
    for (const char16_t lineBreak : {u'\r', u'\n', u'\u2028', u'\u2029'})
        line.replace(QChar(lineBreak), QChar(u' '));
    return line;
}

QString LineLog::append(qint64 wallMs, const QString &text)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(wallMs);
    QString line = time.toString(QStringLiteral("[hh:mm:ss] ")) + flattened(text);
    if (m_lines.size() >= maximumLines)
        m_lines.removeFirst();
    m_lines.append(line);
    m_textIsCurrent = false;
    return line;
}

void LineLog::clear()
{
    m_lines.clear();
    m_text.clear();
    m_textIsCurrent = true;
}

QString LineLog::text() const
{
    if (!m_textIsCurrent) {
        m_text = QStringList(m_lines).join(u'\n');
        m_textIsCurrent = true;
    }
    return m_text;
}

} // namespace tarvo::ui
