#include "manager/RemoteAircraftTable.h"

#include "common/Callsign.h"
#include "manager/AircraftTypeRules.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace tarvo::manager {

using model::RemoteAircraft;

RemoteAircraft *RemoteAircraftTable::obtain(const QString &callsign, const QDateTime &now)
{
    if (RemoteAircraft *known = find(callsign))
        return known;
    if (callsign.isEmpty() || callsign.size() > common::longestCallsign)
        return nullptr;
    if (m_entries.size() >= maximumSize) {
        if (!std::exchange(m_fullLogged, true))
            qWarning() << "No room for more than" << maximumSize << "other aircraft; new ones are ignored";
        return nullptr;
    }
    RemoteAircraft &aircraft = m_entries[callsign].aircraft;
    aircraft.callsign = callsign;
    aircraft.airline = airlineOfCallsign(callsign);
    aircraft.lastUpdate = now;
    return &aircraft;
}

RemoteAircraft *RemoteAircraftTable::find(const QString &callsign)
{
    const auto found = m_entries.find(callsign);
    return found == m_entries.end() ? nullptr : &found->aircraft;
}

const RemoteAircraft *RemoteAircraftTable::find(const QString &callsign) const
{
    const auto found = m_entries.constFind(callsign);
    return found == m_entries.constEnd() ? nullptr : &found->aircraft;
}

std::optional<RemoteAircraft> RemoteAircraftTable::take(const QString &callsign)
{
    const auto found = m_entries.find(callsign);
    if (found == m_entries.end())
        return std::nullopt;
    std::optional<RemoteAircraft> taken = std::move(found->aircraft);
    m_entries.erase(found);
    return taken;
}

void RemoteAircraftTable::clear()
{
    m_entries.clear();
    m_fullLogged = false;
}

QStringList RemoteAircraftTable::callsigns() const
{
    QStringList result = m_entries.keys();
    std::sort(result.begin(), result.end());
    return result;
}

QList<RemoteAircraft> RemoteAircraftTable::all() const
{
    QList<RemoteAircraft> result;
    result.reserve(m_entries.size());
    for (const Entry &entry : m_entries)
        result.append(entry.aircraft);
    return result;
}

bool RemoteAircraftTable::isPositionKnown(const QString &callsign) const
{
    const auto found = m_entries.constFind(callsign);
    return found != m_entries.constEnd() && found->positionKnown;
}

void RemoteAircraftTable::setPositionKnown(const QString &callsign, bool known)
{
    if (const auto found = m_entries.find(callsign); found != m_entries.end())
        found->positionKnown = known;
}

bool RemoteAircraftTable::shouldAskForType(const QString &callsign, qint64 nowMs)
{
    const auto found = m_entries.find(callsign);
    if (found == m_entries.end() || !found->aircraft.typeCode.isEmpty() || found->typeAsked)
        return false;
    if (found->typeAskedMs && nowMs - *found->typeAskedMs < typeIntervalMs)
        return false;
    found->typeAsked = true;
    found->typeAskedMs = nowMs;
    return true;
}

void RemoteAircraftTable::typeAnswered(const QString &callsign)
{
    if (const auto found = m_entries.find(callsign); found != m_entries.end())
        found->typeAsked = false;
}

bool RemoteAircraftTable::shouldAskForConfiguration(const QString &callsign)
{
    const auto found = m_entries.find(callsign);
    return found != m_entries.end() && !std::exchange(found->configurationAsked, true);
}

void RemoteAircraftTable::configurationAnswered(const QString &callsign)
{
    if (const auto found = m_entries.find(callsign); found != m_entries.end())
        found->configurationAsked = false;
}

} // namespace tarvo::manager
