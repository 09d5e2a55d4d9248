#pragma once

#include <QString>

namespace tarvo::practice {

/// An FSD line as it may be printed: the password or token of a login line is "******". Other lines are unchanged.
QString maskSecrets(const QString &line);

} // namespace tarvo::practice
