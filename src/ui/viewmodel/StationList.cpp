#include "ui/viewmodel/StationList.h"

#include <algorithm>

namespace tarvo::ui {

namespace {
constexpr Role<Station> stationRoles[] = {
    {"callsign", [](const Station &row) -> QVariant { return row.callsign; }},
    {"frequency", [](const Station &row) -> QVariant { return row.frequency; }},
    {"name", [](const Station &row) -> QVariant { return row.name; }},
};
} // namespace

QVariantMap Station::toMap() const
{
    return {{QStringLiteral("callsign"), callsign},
            {QStringLiteral("type"), QStringLiteral("atc")},
            {QStringLiteral("frequency"), frequency},
            {QStringLiteral("name"), name}};
}

StationList::StationList(QObject *parent) : RowsModel(stationRoles, parent) {}

bool StationList::set(const Station &station)
{
    const qsizetype at = place(station.callsign);
    if (standsAt(at, station.callsign))
        return replace(at, station);
    if (rows().size() >= maximumStations)
        return false;
    insert(at, station);
    return true;
}

bool StationList::remove(const QString &callsign)
{
    const qsizetype at = place(callsign);
    if (!standsAt(at, callsign))
        return false;
    RowsModel::remove(at);
    return true;
}

bool StationList::clear()
{
    if (rows().isEmpty())
        return false;
    reset({});
    return true;
}

qsizetype StationList::place(const QString &callsign) const
{
    return std::ranges::lower_bound(rows(), callsign, {}, &Station::callsign) - rows().cbegin();
}

bool StationList::standsAt(qsizetype at, const QString &callsign) const
{
    return at < rows().size() && rows().at(at).callsign == callsign;
}

} // namespace tarvo::ui
