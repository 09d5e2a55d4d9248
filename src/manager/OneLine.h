#pragma once

#include <QString>

namespace tarvo::manager {

/// `text` with a blank in place of each carriage return and line feed. A line end within a text from outside would let
/// that text write lines of its own, on the wire and in a log.
inline QString onOneLine(QString text)
{
    return text.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
}

} // namespace tarvo::manager
