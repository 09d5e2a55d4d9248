#include "ui/DurationText.h"

#include <QCoreApplication>
#include <QDateTime>

namespace tarvo::ui {

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("DurationText", text);
}
} // namespace

QString durationText(qint64 seconds)
{
    if (seconds <= 0)
        return tr("0小时 0分"); // the one duration whose minutes are not padded
    const qint64 minutes = seconds % 3600 / 60;
    return tr("%1小时 %2分").arg(seconds / 3600).arg(minutes, 2, 10, QLatin1Char('0'));
}

QString flightTimeText(const QDateTime &start, const QDateTime &end)
{
    if (!start.isValid() || !end.isValid())
        return tr("时间未知");
    return QStringLiteral("%1 - %2").arg(start.toLocalTime().toString(QStringLiteral("MM-dd hh:mm")),
                                         end.toLocalTime().toString(QStringLiteral("hh:mm")));
}

} // namespace tarvo::ui
