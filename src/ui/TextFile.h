#pragma once

#include <QString>

namespace tarvo::ui {

/// Writes `text` as UTF-8, with the system's line ends. A file that is there is replaced when all is written, and stays
/// as it was otherwise. Returns why it failed, in the system's words; empty: it is done.
QString writeTextFile(const QString &path, const QString &text);

} // namespace tarvo::ui
