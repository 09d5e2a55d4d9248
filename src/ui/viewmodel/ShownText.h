#pragma once

#include <QString>

namespace tarvo::ui {

/// `text` from outside as a page may have it: one line of at most `longest` UTF-16 units, with line breaks made blanks
/// and no character cut in half. Laying out a text of a million characters holds the window for seconds.
QString shownText(const QString &text, qsizetype longest);

} // namespace tarvo::ui
