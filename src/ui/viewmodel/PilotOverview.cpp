#include "ui/viewmodel/PilotOverview.h"

#include "model/NearbyAtc.h"

#include <QStringList>

#include <algorithm>

namespace tarvo::ui {

namespace {
constexpr qint64 msPerMinute = 60'000;
} // namespace

QString stationsOn(const QString &frequency, const QList<model::NearbyAtc> &stations)
{
    QStringList found;
    for (const model::NearbyAtc &station : stations)
        if (station.frequency == frequency)
            found << station.callsign;
    const QString first = found.value(0);
    return found.size() > 1 ? QStringLiteral("%1 +%2").arg(first).arg(found.size() - 1) : first;
}

QString onlineText(qint64 ms)
{
    const qint64 minutes = std::max<qint64>(0, ms) / msPerMinute;
    if (minutes < 60)
        return PilotOverview::tr("%1 分钟").arg(minutes);
    return PilotOverview::tr("%1 小时 %2 分").arg(minutes / 60).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

FlightSummary summaryOf(const FlightFacts &facts, const QList<model::NearbyAtc> &stations)
{
    FlightSummary summary;
    const QString callsign = facts.callsign.trimmed().toUpper();
    if (!callsign.isEmpty())
        summary.callsign = callsign;
    QStringList detail{facts.observer ? PilotOverview::tr("观察员") : facts.typeCode.trimmed().toUpper(),
                       facts.simulator};
    detail.removeAll(QString());
    summary.detail = detail.join(QStringLiteral(" · "));
    if (facts.live) {
        summary.com1 = facts.com1;
        summary.com1Station = stationsOn(facts.com1, stations);
        summary.com2 = facts.com2;
        summary.com2Station = stationsOn(facts.com2, stations);
        summary.transponder = facts.transponder;
    }
    if (facts.connectedForMs >= 0)
        summary.online = onlineText(facts.connectedForMs);
    return summary;
}

void PilotOverview::show(const FlightSummary &summary)
{
    if (summary == m_shown)
        return;
    m_shown = summary;
    emit changed();
}

} // namespace tarvo::ui
