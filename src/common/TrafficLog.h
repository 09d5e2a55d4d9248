#pragma once

#include <QLoggingCategory>
#include <QString>

namespace tarvo::common {

/// "tarvo.traffic": whatever tells why another aircraft is drawn, or is not.
Q_DECLARE_LOGGING_CATEGORY(trafficLog)

/// A line of that category, which begins with "Traffic:", so that one search of the file finds them all. `deed` as in
/// "added", `who` does it; `callsign` and `why` may be from outside.
QString trafficText(const char *deed, const QString &callsign, const char *who, const QString &why);

} // namespace tarvo::common
