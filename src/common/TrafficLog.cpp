#include "common/TrafficLog.h"

#include "common/OneLine.h"

#include <QLatin1StringView>

namespace tarvo::common {

Q_LOGGING_CATEGORY(trafficLog, "tarvo.traffic")

QString trafficText(const char *deed, const QString &callsign, const char *who, const QString &why)
{
    return QStringLiteral("Traffic: %1 %2 by %3, %4")
        .arg(QLatin1StringView(deed), excerpt(callsign), QLatin1StringView(who), excerpt(why));
}

} // namespace tarvo::common
