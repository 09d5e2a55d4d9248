#pragma once

#include "practice/simconnect/SimUnits.h"
#include "simulator/msfs/simconnect/SimConnectApi.h"

#include <QByteArray>
#include <QHash>
#include <QList>

#include <optional>

namespace tarvo::practice {

struct SimObject;

/// What a client has put together under its numbers: lists of variables with the unit and type in which it wants them.
class DataDefinitions
{
public:
    static constexpr qsizetype mostDefinitions = 1000;
    static constexpr qsizetype mostFields = 1000; ///< of one definition

    struct Field
    {
        int variable = -1; ///< index in simVariables()
        const SimUnit *unit = nullptr;
        quint32 datatype = 0;
    };

    /// The exception that the simulator answers with; 0 when the field was added.
    quint32 add(quint32 define, const QByteArray &datum, const QByteArray &unit, quint32 datatype);
    /// False when there is none.
    bool remove(quint32 define) { return m_definitions.remove(define); }
    void clear() { m_definitions.clear(); }
    bool contains(quint32 define) const { return m_definitions.contains(define); }
    QList<Field> fields(quint32 define) const { return m_definitions.value(define); }

    /// The object's values, one behind the other.
    QByteArray read(quint32 define, const SimObject &object) const;
    /// The exception that such a write is answered with; 0 when it is done. `waypoint` gets the last one among the
    /// data.
    quint32 write(quint32 define, const QByteArray &data, SimObject &object,
                  std::optional<simulator::msfs::SIMCONNECT_DATA_WAYPOINT> &waypoint) const;

private:
    QHash<quint32, QList<Field>> m_definitions;
};

} // namespace tarvo::practice
