#include "practice/simconnect/MsfsStandIn.h"

#include "practice/simconnect/SimException.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace tarvo::practice {

using namespace simulator::msfs;

namespace {
constexpr int identMs = 18'000;           // as long as a transponder idents
constexpr int mostFramesBehind = 8;       ///< a client that didn't look for longer has missed the others
constexpr DWORD largestRadius = 200'000;  ///< metres; the simulator's own limit
constexpr qsizetype mostEvents = 1000;    ///< of one client
constexpr double earthRadius = 6'371'000; ///< metres
constexpr double lowestKhz = 118'000;
constexpr double highestKhz = 136'992;

const QByteArray ident = QByteArrayLiteral("XPNDR_IDENT_ON");
const QByteArray com1 = QByteArrayLiteral("COM_RADIO_SET_HZ");
const QByteArray com2 = QByteArrayLiteral("COM2_RADIO_SET_HZ");

double distanceM(const AircraftState &a, const AircraftState &b)
{
    const double north = qDegreesToRadians(b.latitude - a.latitude);
    const double east = qDegreesToRadians(b.longitude - a.longitude);
    const double h = std::pow(std::sin(north / 2), 2) + std::cos(qDegreesToRadians(a.latitude)) *
                                                            std::cos(qDegreesToRadians(b.latitude)) *
                                                            std::pow(std::sin(east / 2), 2);
    return 2 * earthRadius * std::asin(std::sqrt(std::min(1.0, h)));
}
} // namespace

MsfsStandIn::MsfsStandIn(const common::Clock &clock) : m_clock(clock), m_mark(clock.steadyMs())
{
    setUserAircraft("Practice A320neo", "B-1001");
    m_user.id = userObject;
    m_user.state = m_flight.at(0);
    m_wire.setSimulator(this);
}

MsfsStandIn::~MsfsStandIn()
{
    m_wire.setSimulator(nullptr);
}

void MsfsStandIn::setUserAircraft(const QByteArray &title, const QByteArray &tailNumber)
{
    m_user.title = title;
    m_user.tailNumber = tailNumber;
}

double MsfsStandIn::flightTimeAt(qint64 steadyMs) const
{
    return m_paused ? m_flightAtMark : m_flightAtMark + static_cast<double>(steadyMs - m_mark) / 1000.0;
}

void MsfsStandIn::setFlightTime(double seconds)
{
    m_flightAtMark = std::isfinite(seconds) ? seconds : 0;
    m_mark = m_clock.steadyMs();
    m_user.state = m_flight.at(m_flightAtMark);
    m_user.writes.settle(m_user.state);
}

void MsfsStandIn::setPaused(bool paused)
{
    if (paused == m_paused)
        return;
    setFlightTime(flightTime());
    m_paused = paused;
    setValue("PAUSE INDICATOR", "bool", paused ? 1 : 0);
    for (const quint32 event : std::as_const(m_pauseEvents))
        m_wire.queue(message::event(0, event, paused ? 1 : 0));
}

double MsfsStandIn::value(const QByteArray &variable, const QByteArray &unit) const
{
    const int index = simVariableIndex(variable);
    const SimUnit *in = index < 0 ? nullptr : simUnit(unit, simVariables()[static_cast<std::size_t>(index)].quantity);
    if (!in || !simVariables()[static_cast<std::size_t>(index)].read)
        return 0;
    return in->fromNatural(m_user.writes.value(index, m_flight.at(flightTime())));
}

bool MsfsStandIn::setValue(const QByteArray &variable, const QByteArray &unit, double value)
{
    const int index = simVariableIndex(variable);
    const SimUnit *in = index < 0 ? nullptr : simUnit(unit, simVariables()[static_cast<std::size_t>(index)].quantity);
    if (!in || !simVariables()[static_cast<std::size_t>(index)].read || !std::isfinite(value))
        return false;
    m_user.writes.write(index, in->toNatural(value), m_flight.at(flightTime()));
    return true;
}

AiAircraft MsfsStandIn::aircraft(const QByteArray &tailNumber) const
{
    for (const AiAircraft &aircraft : m_traffic.all()) {
        if (aircraft.tailNumber == tailNumber)
            return aircraft;
    }
    return {};
}

double MsfsStandIn::written(quint32 object, const QByteArray &variable, const QByteArray &unit)
{
    const AiAircraft *aircraft = m_traffic.find(object);
    const int index = simVariableIndex(variable);
    if (!aircraft || !aircraft->writes.contains(index))
        return -1;
    const SimUnit *in = simUnit(unit, simVariables()[static_cast<std::size_t>(index)].quantity);
    return in ? in->fromNatural(aircraft->value(index)) : -1;
}

void MsfsStandIn::raise(quint32 number, quint32 sendId, quint32 index)
{
    m_wire.queue(message::exception(number, sendId ? sendId : m_wire.sendId(), index));
}

void MsfsStandIn::quit()
{
    m_wire.queue(message::quit());
    m_wire.failAlways(QStringLiteral("Open"));
    m_frozen = true;
}

void MsfsStandIn::start()
{
    m_wire.succeed(QStringLiteral("Open"));
    m_frozen = false;
}

void MsfsStandIn::opened()
{
    m_wire.queue(message::open(m_application));
    m_lastFrame = m_clock.steadyMs();
}

void MsfsStandIn::closed()
{
    m_definitions.clear();
    m_requests.clear();
    m_events.clear();
    m_pauseEvents.clear();
    m_inputEvents.clear();
    m_traffic.clear(); // the simulator takes away what a client has created
}

void MsfsStandIn::addToDataDefinition(DWORD define, const QByteArray &datum, const QByteArray &unit, DWORD datatype)
{
    check(m_definitions.add(define, datum, unit, datatype), 2);
}

void MsfsStandIn::clearDataDefinition(DWORD define)
{
    if (!m_definitions.remove(define))
        check(UnrecognizedId, 1);
}

void MsfsStandIn::requestDataOnSimObject(DWORD request, DWORD define, DWORD object, DWORD period, DWORD flags)
{
    DataRequests::Request asked{.define = define,
                                .object = object,
                                .onChange = (flags & SIMCONNECT_DATA_REQUEST_FLAG_CHANGED) != 0,
                                .told = {}};
    if (period == SIMCONNECT_PERIOD_NEVER) {
        m_requests.remove(request);
    } else if (!m_definitions.contains(define) || !find(object)) {
        check(UnrecognizedId, m_definitions.contains(define) ? 3 : 2);
    } else if (period == SIMCONNECT_PERIOD_ONCE) {
        m_requests.remove(request); // a number has one meaning at a time
        if (!m_frozen)
            tell(request, asked);
    } else if (period != SIMCONNECT_PERIOD_SIM_FRAME) {
        check(InvalidEnum, 4);
    } else if (!m_requests.add(request, asked)) {
        check(TooManyRequests, 1);
    }
}

void MsfsStandIn::requestDataOnSimObjectType(DWORD request, DWORD define, DWORD radiusMetres, DWORD type)
{
    if (!m_definitions.contains(define))
        return check(UnrecognizedId, 2);
    if (type != SIMCONNECT_SIMOBJECT_TYPE_AIRCRAFT)
        return check(InvalidEnum, 4);
    if (radiusMetres > largestRadius)
        return check(OutOfBounds, 3);
    if (m_frozen)
        return;
    m_user.state = m_flight.at(flightTime());
    QList<SimObject> near{m_user};
    for (const AiAircraft &aircraft : m_traffic.all()) {
        if (distanceM(m_user.state, aircraft.state) <= radiusMetres)
            near.append(aircraft);
    }
    message::DataHead head{.request = request,
                           .object = 0,
                           .define = define,
                           .entry = 0,
                           .outOf = static_cast<quint32>(near.size()),
                           .count = static_cast<quint32>(m_definitions.fields(define).size())};
    for (const SimObject &object : std::as_const(near)) {
        head.object = object.id;
        m_wire.queue(trafficMessage(head, object));
        ++head.entry;
    }
}

QByteArray MsfsStandIn::trafficMessage(const message::DataHead &head, const SimObject &object) const
{
    const QByteArray data = m_definitions.read(head.define, object);
    return message::objectDataByType(head, m_trafficBytes < 0 ? data : data.left(m_trafficBytes));
}

void MsfsStandIn::setDataOnSimObject(DWORD define, DWORD object, const QByteArray &data)
{
    SimObject *written = find(object);
    if (!m_definitions.contains(define) || !written)
        return check(UnrecognizedId, m_definitions.contains(define) ? 2 : 1);
    if (written == &m_user)
        m_user.state = m_flight.at(flightTime());
    std::optional<SIMCONNECT_DATA_WAYPOINT> waypoint;
    if (const quint32 exception = m_definitions.write(define, data, *written, waypoint))
        return check(exception, 6);
    AiAircraft *aircraft = m_traffic.find(object);
    if (waypoint && !aircraft)
        check(OperationInvalidForObjectType, 2);
    else if (waypoint)
        m_traffic.move(*aircraft, *waypoint);
}

void MsfsStandIn::mapClientEventToSimEvent(DWORD event, const QByteArray &name)
{
    const QByteArray known = name.toUpper();
    if (known != ident && known != com1 && known != com2)
        check(NameUnrecognized, 2);
    else if (m_events.contains(event))
        check(EventIdDuplicate, 1);
    else if (m_events.size() >= mostEvents)
        check(TooManyRequests, 1);
    else
        m_events.insert(event, known);
}

void MsfsStandIn::transmitClientEvent(DWORD object, DWORD event, DWORD data)
{
    const QByteArray name = m_events.value(event);
    if (name.isEmpty() || find(object) != &m_user)
        return check(UnrecognizedId, name.isEmpty() ? 2 : 1);
    if (name == ident) {
        m_identUntil = m_clock.steadyMs() + identMs;
        return;
    }
    const double khz = data / 1000.0;
    if (khz >= lowestKhz && khz <= highestKhz) // a radio can't be tuned elsewhere
        setValue(name == com1 ? "COM ACTIVE FREQUENCY:1" : "COM ACTIVE FREQUENCY:2", "kHz", khz);
}

void MsfsStandIn::subscribeToSystemEvent(DWORD event, const QByteArray &name)
{
    if (name.compare("Pause", Qt::CaseInsensitive) != 0)
        return check(NameUnrecognized, 2);
    if (m_pauseEvents.size() >= mostEvents)
        return check(TooManyRequests, 1);
    m_pauseEvents.insert(event);
    m_wire.queue(message::event(0, event, m_paused ? 1 : 0));
}

void MsfsStandIn::createNonATCAircraft(const QByteArray &title, const QByteArray &livery, const QByteArray &tailNumber,
                                       const SIMCONNECT_DATA_INITPOSITION &position, DWORD request)
{
    AiAircraft aircraft;
    aircraft.title = title;
    aircraft.tailNumber = tailNumber;
    aircraft.livery = livery;
    aircraft.request = request;
    aircraft.start = position;
    m_traffic.order(aircraft, m_wire.sendId(), m_clock.steadyMs());
}

void MsfsStandIn::removeObject(DWORD object, DWORD /*request*/)
{
    if (!m_traffic.remove(object))
        check(UnrecognizedId, 1);
}

void MsfsStandIn::enumerateInputEvents(DWORD request)
{
    m_wire.queue(message::inputEvents(request, m_inputEvents.all()));
}

void MsfsStandIn::subscribeInputEvent(quint64 hash)
{
    if (!m_inputEvents.subscribe(hash))
        check(UnrecognizedId, 1);
}

void MsfsStandIn::poll()
{
    if (m_frozen)
        return;
    answerCreates();
    const qint64 now = m_clock.steadyMs();
    const qint64 frames = (now - m_lastFrame) / std::max(1, m_frameMs);
    if (frames > mostFramesBehind)
        m_lastFrame += (frames - mostFramesBehind) * m_frameMs;
    while (m_lastFrame + m_frameMs <= now) {
        m_lastFrame += m_frameMs;
        frameAt(m_lastFrame);
    }
}

void MsfsStandIn::answerCreates()
{
    const QList<CreateResult> results = m_traffic.due(m_clock.steadyMs());
    for (const CreateResult &result : results) {
        if (result.object != 0)
            m_wire.queue(message::assignedObject(result.request, result.object));
        else
            raise(CreateObjectFailed, result.sendId);
    }
}

void MsfsStandIn::frame()
{
    frameAt(m_clock.steadyMs());
}

void MsfsStandIn::frameAt(qint64 steadyMs)
{
    m_user.state = m_flight.at(flightTimeAt(steadyMs));
    m_user.writes.settle(m_user.state);
    auto &requests = m_requests.all();
    for (auto request = requests.begin(); request != requests.end(); ++request)
        tell(request.key(), request.value());
    m_inputEvents.setValue("HANDLING_SPEEDBRAKE", m_user.state.speedbrake * 100);
    for (const QByteArray &message : m_inputEvents.takeMessages())
        m_wire.queue(message);
}

void MsfsStandIn::tell(quint32 request, DataRequests::Request &asked)
{
    const SimObject *object = find(asked.object);
    const QList<DataDefinitions::Field> fields = m_definitions.fields(asked.define);
    if (!object || fields.isEmpty())
        return; // has been taken away meanwhile
    const QByteArray data = m_definitions.read(asked.define, *object);
    if (asked.onChange && data == asked.told)
        return;
    asked.told = data;
    const message::DataHead head{.request = request,
                                 .object = asked.object,
                                 .define = asked.define,
                                 .entry = 1, // of one, as the simulator counts here
                                 .outOf = 1,
                                 .count = static_cast<quint32>(fields.size())};
    m_wire.queue(message::objectData(head, data));
}

void MsfsStandIn::check(quint32 exception, quint32 index)
{
    if (exception != NoException)
        raise(exception, 0, index);
}

SimObject *MsfsStandIn::find(quint32 object)
{
    return object == SIMCONNECT_OBJECT_ID_USER || object == userObject ? &m_user : m_traffic.find(object);
}

} // namespace tarvo::practice
