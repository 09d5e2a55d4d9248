#include "ui/viewmodel/LineLog.h"

#include "ui/viewmodel/ShownText.h"

#include <QDateTime>
#include <QStringList>

namespace tarvo::ui {

QString LineLog::append(qint64 wallMs, const QString &text)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(wallMs);
    QString line = time.toString(QStringLiteral("[hh:mm:ss] ")) + shownText(text, maximumLineLength);
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
