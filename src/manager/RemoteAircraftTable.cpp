#include "manager/RemoteAircraftTable.h"

#include "common/Callsign.h"
#include "manager/AircraftTypeRules.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace tarvo::manager {

using Record = RemoteAircraftTable::Record;

Record *RemoteAircraftTable::obtain(const QString &callsign, const QDateTime &now)
{
    if (Record *known = find(callsign))
        return known;
    if (callsign.isEmpty() || callsign.size() > common::longestCallsign)
        return nullptr;
    if (m_records.size() >= maximumSize) {
        if (!std::exchange(m_fullLogged, true))
            qWarning() << "No room for more than" << maximumSize << "other aircraft; new ones are ignored";
        return nullptr;
    }
    Record &aircraft = m_records[callsign];
    aircraft.callsign = callsign;
    aircraft.airline = airlineOfCallsign(callsign);
    aircraft.lastUpdate = now;
    return &aircraft;
}

Record *RemoteAircraftTable::find(const QString &callsign)
{
    const auto found = m_records.find(callsign);
    return found == m_records.end() ? nullptr : &*found;
}

const Record *RemoteAircraftTable::find(const QString &callsign) const
{
    const auto found = m_records.constFind(callsign);
    return found == m_records.constEnd() ? nullptr : &*found;
}

std::optional<Record> RemoteAircraftTable::take(const QString &callsign)
{
    const auto found = m_records.find(callsign);
    if (found == m_records.end())
        return std::nullopt;
    std::optional<Record> taken = std::move(*found);
    m_records.erase(found);
    return taken;
}

void RemoteAircraftTable::clear()
{
    m_records.clear();
    m_fullLogged = false;
}

QStringList RemoteAircraftTable::callsigns() const
{
    QStringList result = m_records.keys();
    std::sort(result.begin(), result.end());
    return result;
}

QList<model::RemoteAircraft> RemoteAircraftTable::all() const
{
    return {m_records.begin(), m_records.end()};
}

bool RemoteAircraftTable::Record::shouldAskForType(qint64 nowMs)
{
    if (!typeCode.isEmpty() || m_typeAsked)
        return false;
    if (m_typeAskedMs && nowMs - *m_typeAskedMs < typeIntervalMs)
        return false;
    m_typeAsked = true;
    m_typeAskedMs = nowMs;
    return true;
}

} // namespace tarvo::manager
