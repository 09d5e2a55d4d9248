#pragma once

#include "manager/OneLine.h"

#include <QString>

namespace tarvo::manager {

/// What the log tells of another aircraft, on one line that begins with "Traffic:", so that one search answers why
/// somebody is drawn or is not. `deed` as in "added", `who` does it, `why` may be from outside.
inline QString trafficText(const char *deed, const QString &callsign, const char *who, const QString &why)
{
    return QStringLiteral("Traffic: %1 %2 by %3, %4")
        .arg(QLatin1StringView(deed), excerpt(callsign), QLatin1StringView(who), excerpt(why));
}

} // namespace tarvo::manager
