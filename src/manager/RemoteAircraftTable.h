#pragma once

#include "model/RemoteAircraft.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace tarvo::manager {

/// The other aircraft by upper-case callsign. A pointer into the table lives until the next call that changes it, or
/// anything else is called that might come back.
class RemoteAircraftTable
{
public:
    /// An aircraft, and what has been asked about it without an answer yet.
    struct Record : model::RemoteAircraft
    {
        /// A type that nobody can tell is not asked for more often, whatever is answered.
        static constexpr qint64 typeIntervalMs = 10'000;
        /// True when the type is unknown and nobody has been asked for it: then the caller asks, and this gives false
        /// until the answer has come. `nowMs`: of a clock that never jumps.
        bool shouldAskForType(qint64 nowMs);
        void typeAnswered() { m_typeAsked = false; }
        /// True the first time: the configuration is asked for once.
        bool shouldAskForConfiguration() { return !std::exchange(m_configurationAsked, true); }

        bool positionKnown = false; ///< or it would be drawn at 0 N 0 E

    private:
        bool m_typeAsked = false;
        std::optional<qint64> m_typeAskedMs; ///< the last time
        bool m_configurationAsked = false;
    };

    /// A server that invents callsigns can't fill the memory: the next one finds no room and is ignored until others
    /// leave. Those who are there stay; to drop the oldest would cost a search for each newcomer, and real aircraft.
    static constexpr qsizetype maximumSize = 4000;

    /// The aircraft of that callsign, made at time `now` when it is unknown. Null when there is no room or the callsign
    /// is empty or too long to be one.
    Record *obtain(const QString &callsign, const QDateTime &now);
    Record *find(const QString &callsign);
    const Record *find(const QString &callsign) const;
    /// Takes the aircraft out, with what was asked about it.
    std::optional<Record> take(const QString &callsign);
    void clear();

    qsizetype size() const { return m_records.size(); }
    /// In ascending order.
    QStringList callsigns() const;
    /// In no order.
    QList<model::RemoteAircraft> all() const;

private:
    QHash<QString, Record> m_records;
    bool m_fullLogged = false; ///< since the table was empty
};

} // namespace tarvo::manager
