#pragma once

#include <QString>

class QDateTime;

namespace tarvo::ui {

/// "%1小时 %2分" with whole hours and the remaining whole minutes in two digits; no time at all is "0小时 0分".
QString durationText(qint64 seconds);

/// "MM-dd hh:mm - hh:mm" in local time, or "时间未知" when either end is not a valid time.
QString flightTimeText(const QDateTime &start, const QDateTime &end);

} // namespace tarvo::ui
