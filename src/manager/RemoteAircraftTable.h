#pragma once

#include "model/RemoteAircraft.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace tarvo::manager {

/// The other aircraft by upper-case callsign, and what has been asked about each of them without an answer yet. A
/// pointer into the table lives until the next call that changes it, or anything else is called that might come back.
class RemoteAircraftTable
{
public:
    /// A server that invents callsigns can't fill the memory: the next one finds no room and is ignored until others
    /// leave. Those who are there stay; to drop the oldest would cost a search for each newcomer, and real aircraft.
    static constexpr qsizetype maximumSize = 4000;

    /// The aircraft of that callsign, made at time `now` when it is unknown. Null when there is no room or the callsign
    /// is empty or too long to be one.
    model::RemoteAircraft *obtain(const QString &callsign, const QDateTime &now);
    model::RemoteAircraft *find(const QString &callsign);
    const model::RemoteAircraft *find(const QString &callsign) const;
    /// Takes the aircraft out, with what was asked about it.
    std::optional<model::RemoteAircraft> take(const QString &callsign);
    void clear();

    qsizetype size() const { return m_entries.size(); }
    /// In ascending order.
    QStringList callsigns() const;
    /// In no order.
    QList<model::RemoteAircraft> all() const;

    /// The simulator may be told of an aircraft once its position has come.
    bool isPositionKnown(const QString &callsign) const;
    void setPositionKnown(const QString &callsign, bool known);

    /// A type that nobody can tell is not asked for more often, whatever is answered.
    static constexpr qint64 typeIntervalMs = 10'000;
    /// True when the aircraft's type is unknown and nobody has been asked for it: then the caller asks, and this gives
    /// false until the answer has come. `nowMs`: of a clock that never jumps.
    bool shouldAskForType(const QString &callsign, qint64 nowMs);
    void typeAnswered(const QString &callsign);
    /// The same for the aircraft's configuration.
    bool shouldAskForConfiguration(const QString &callsign);
    void configurationAnswered(const QString &callsign);

private:
    struct Entry
    {
        model::RemoteAircraft aircraft;
        bool positionKnown = false;
        bool typeAsked = false;
        std::optional<qint64> typeAskedMs; ///< the last time
        bool configurationAsked = false;
    };

    QHash<QString, Entry> m_entries;
    bool m_fullLogged = false; ///< since the table was empty
};

} // namespace tarvo::manager
