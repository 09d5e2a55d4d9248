#include "ui/viewmodel/StationList.h"

#include <algorithm>

namespace tarvo::ui {

using model::NearbyAtc;

namespace {
constexpr Role<NearbyAtc> stationRoles[] = {
    {"callsign", member<&NearbyAtc::callsign>},
    {"type", [](const NearbyAtc &) -> QVariant { return QStringLiteral("atc"); }},
    {"frequency", member<&NearbyAtc::frequency>},
    {"name", member<&NearbyAtc::name>},
};
} // namespace

StationList::StationList(QObject *parent) : RowsModel(stationRoles, parent)
{
    qRegisterMetaType<NearbyAtc>("model::NearbyAtc");
}

bool StationList::set(const NearbyAtc &station)
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
    return std::ranges::lower_bound(rows(), callsign, {}, &NearbyAtc::callsign) - rows().cbegin();
}

bool StationList::standsAt(qsizetype at, const QString &callsign) const
{
    return at < rows().size() && rows().at(at).callsign == callsign;
}

} // namespace tarvo::ui
