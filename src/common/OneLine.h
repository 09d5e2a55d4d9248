#pragma once

#include <QString>

namespace tarvo::common {

/// `text` with a blank in place of each carriage return and line feed. A line end within a text from outside would let
/// that text write lines of its own, on the wire and in a log.
inline QString onOneLine(QString text)
{
    return text.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
}

/// As much of a text from outside as is worth a place in the log, on one line. A whole one may have a megabyte, and the
/// server decides how many of them come.
inline QString excerpt(const QString &text)
{
    constexpr qsizetype longest = 512;
    return onOneLine(text.left(longest));
}

} // namespace tarvo::common
