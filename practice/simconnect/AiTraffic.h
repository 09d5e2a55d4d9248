#pragma once

#include "practice/simconnect/SimObject.h"
#include "simulator/msfs/simconnect/SimConnectApi.h"

#include <QByteArray>
#include <QList>
#include <QMap>

#include <optional>

namespace tarvo::practice {

/// An aircraft that a client has had created.
struct AiAircraft : SimObject
{
    quint32 request = 0; ///< that created it
    QByteArray livery;   ///< empty from the older entry point
    simulator::msfs::SIMCONNECT_DATA_INITPOSITION start{};
    simulator::msfs::SIMCONNECT_DATA_WAYPOINT waypoint{}; ///< the last one; it is there at once
    int waypoints = 0;                                    ///< how many it was given
};

/// How the simulator takes the order to create an aircraft.
struct CreateAnswering
{
    enum class Mode
    {
        AtOnce,
        Late,  ///< after delayMs
        Never, ///< until assign() or fail() says so
        Fail   ///< exception 22
    };
    Mode mode = Mode::AtOnce;
    int delayMs = 0;
};

/// What a client is told about an order: an object, or exception 22.
struct CreateResult
{
    quint32 request = 0;
    quint32 object = 0; ///< 0: it failed
    quint32 sendId = 0; ///< of the order
};

/// The aircraft that clients have ordered, and the orders that wait.
class AiTraffic
{
public:
    static constexpr qsizetype mostAircraft = 10'000; ///< with the orders that wait; further ones fail
    static constexpr quint32 firstId = 258;

    void setAnswering(CreateAnswering answering) { m_answering = answering; }
    /// Models that are there; orders for others fail. Empty: all are.
    void setInstalled(const QList<QByteArray> &titles) { m_installed = titles; }

    /// Takes an order down. `start` in the units of the structure.
    void order(const AiAircraft &aircraft, quint32 sendId, qint64 nowMs);
    /// The orders that are answered by now; their aircraft are there.
    QList<CreateResult> due(qint64 nowMs);
    qsizetype pending() const { return m_orders.size(); }
    /// Answers the oldest order now, whatever it was to wait for. False when there is none.
    bool assign();
    bool fail();

    bool remove(quint32 id) { return m_aircraft.remove(id) > 0; }
    /// Null when there is none.
    AiAircraft *find(quint32 id);
    void move(AiAircraft &aircraft, const simulator::msfs::SIMCONNECT_DATA_WAYPOINT &waypoint);
    /// By id.
    QList<AiAircraft> all() const { return m_aircraft.values(); }
    void clear();

private:
    struct Order
    {
        AiAircraft aircraft;
        quint32 sendId = 0;
        bool fails = false;
        std::optional<qint64> dueMs; ///< steady time; none: never by itself
    };

    CreateResult carryOut(const Order &order);
    bool isPossible(const AiAircraft &aircraft) const;

    CreateAnswering m_answering;
    QList<QByteArray> m_installed;
    QList<Order> m_orders;
    QMap<quint32, AiAircraft> m_aircraft;
    quint32 m_nextId = firstId;
};

} // namespace tarvo::practice
