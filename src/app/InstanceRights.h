#pragma once

#include <QString>

namespace tarvo::app {

/// A local server's name that no other user can take, made of `name`.
QString privateServerName(const QString &name);

/// Lets process `pid` bring its window forward, which only the program that the user has just started may do.
void letComeForward(qint64 pid);

} // namespace tarvo::app
