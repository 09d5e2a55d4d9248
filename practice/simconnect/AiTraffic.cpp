#include "practice/simconnect/AiTraffic.h"

#include "common/Units.h"

#include <cmath>
#include <limits>

namespace tarvo::practice {

using namespace simulator::msfs;

namespace {
constexpr qint64 now = std::numeric_limits<qint64>::min(); ///< due, whatever the clock says

AircraftState stateAt(const SIMCONNECT_DATA_INITPOSITION &start)
{
    AircraftState state;
    state.latitude = start.Latitude;
    state.longitude = start.Longitude;
    state.altitudeM = start.Altitude / common::feetPerMetre;
    state.pitch = start.Pitch;
    state.bank = start.Bank;
    state.heading = start.Heading;
    state.onGround = start.OnGround != 0;
    return state;
}
} // namespace

void AiTraffic::order(const AiAircraft &aircraft, quint32 sendId, qint64 nowMs)
{
    Order order{.aircraft = aircraft, .sendId = sendId, .fails = false, .dueMs = now};
    using Mode = CreateAnswering::Mode;
    if (m_orders.size() + m_aircraft.size() >= mostAircraft || !isPossible(aircraft) || m_answering.mode == Mode::Fail)
        order.fails = true;
    else if (m_answering.mode == Mode::Late)
        order.dueMs = nowMs + m_answering.delayMs;
    else if (m_answering.mode == Mode::Never)
        order.dueMs.reset();
    m_orders.append(order);
}

QList<CreateResult> AiTraffic::due(qint64 nowMs)
{
    QList<CreateResult> results;
    QList<Order> waiting;
    for (const Order &order : std::as_const(m_orders)) {
        if (order.dueMs && *order.dueMs <= nowMs)
            results.append(carryOut(order));
        else
            waiting.append(order);
    }
    m_orders = waiting;
    return results;
}

bool AiTraffic::assign()
{
    for (Order &order : m_orders) {
        if (order.dueMs != now) {
            order.dueMs = now;
            return true;
        }
    }
    return false;
}

bool AiTraffic::fail()
{
    for (Order &order : m_orders) {
        if (order.dueMs != now) {
            order.dueMs = now;
            order.fails = true;
            return true;
        }
    }
    return false;
}

AiAircraft *AiTraffic::find(quint32 id)
{
    const auto found = m_aircraft.find(id);
    return found == m_aircraft.end() ? nullptr : &*found;
}

void AiTraffic::move(AiAircraft &aircraft, const SIMCONNECT_DATA_WAYPOINT &waypoint)
{
    aircraft.waypoint = waypoint;
    ++aircraft.waypoints;
    aircraft.state.latitude = waypoint.Latitude;
    aircraft.state.longitude = waypoint.Longitude;
    aircraft.state.altitudeM = waypoint.Altitude / common::feetPerMetre;
    aircraft.state.onGround = (waypoint.Flags & SIMCONNECT_WAYPOINT_ON_GROUND) != 0;
}

void AiTraffic::clear()
{
    m_orders.clear();
    m_aircraft.clear();
}

CreateResult AiTraffic::carryOut(const Order &order)
{
    if (order.fails)
        return {.request = order.aircraft.request, .object = 0, .sendId = order.sendId};
    AiAircraft aircraft = order.aircraft;
    aircraft.id = m_nextId++;
    aircraft.state = stateAt(aircraft.start);
    m_aircraft.insert(aircraft.id, aircraft);
    return {.request = aircraft.request, .object = aircraft.id, .sendId = order.sendId};
}

bool AiTraffic::isPossible(const AiAircraft &aircraft) const
{
    const SIMCONNECT_DATA_INITPOSITION &start = aircraft.start;
    for (const double number : {start.Altitude, start.Pitch, start.Bank, start.Heading}) {
        if (!std::isfinite(number))
            return false;
    }
    return std::abs(start.Latitude) <= 90 && std::abs(start.Longitude) <= 180 && !aircraft.title.isEmpty() &&
           (m_installed.isEmpty() || m_installed.contains(aircraft.title));
}

} // namespace tarvo::practice
