#include "ui/viewmodel/ShownText.h"

namespace tarvo::ui {

QString shownText(const QString &text, qsizetype longest)
{
    QString line = text.left(longest);
    if (line.size() < text.size() && !line.isEmpty() && line.back().isHighSurrogate())
        line.chop(1);
    for (const char16_t lineBreak : {u'\r', u'\n', u'\u2028', u'\u2029'})
        line.replace(QChar(lineBreak), QChar(u' '));
    return line;
}

} // namespace tarvo::ui
