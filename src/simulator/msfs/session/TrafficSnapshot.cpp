#include "simulator/msfs/session/TrafficSnapshot.h"

#include "simulator/msfs/session/DispatchMessage.h"
#include "simulator/msfs/session/SimConnectLink.h"
#include "simulator/msfs/simvar/SimVarWire.h"

#include <QVariantMap>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace tarvo::simulator::msfs {

namespace {

constexpr DWORD trafficDefinition = 40000;
constexpr DWORD trafficRequest = 40001;
constexpr int trafficIntervalMs = 1000;

struct Field
{
    const char *variable;
    const char *unit;
    DWORD type;
};

/// In the order in which a reply holds them.
constexpr Field fields[] = {
    {"ATC ID", nullptr, SIMCONNECT_DATATYPE_STRING64},
    {"PLANE LATITUDE", "degrees", SIMCONNECT_DATATYPE_FLOAT64},
    {"PLANE LONGITUDE", "degrees", SIMCONNECT_DATATYPE_FLOAT64},
};

#pragma pack(push, 1)
struct Contact
{
    char atcId[64];
    double latitude;
    double longitude;
};
#pragma pack(pop)
static_assert(sizeof(Contact) == 80);

/// The rest of a contact is not asked for and stands at nothing.
QVariantMap rowOf(quint32 object, const Contact &contact)
{
    const QString atcId = wireText(QByteArrayView(contact.atcId, sizeof contact.atcId)).trimmed();
    return {{QStringLiteral("objectId"), object},
            {QStringLiteral("label"), atcId.isEmpty() ? QStringLiteral("OBJ-%1").arg(object) : atcId},
            {QStringLiteral("atcId"), atcId},
            {QStringLiteral("latitude"), double(contact.latitude)},
            {QStringLiteral("longitude"), double(contact.longitude)},
            {QStringLiteral("altitudeFeet"), 0.0},
            {QStringLiteral("headingTrue"), 0.0},
            {QStringLiteral("groundSpeedKnots"), 0.0},
            {QStringLiteral("onGround"), false},
            {QStringLiteral("beaconOn"), false},
            {QStringLiteral("navOn"), false},
            {QStringLiteral("strobeOn"), false}};
}

} // namespace

TrafficSnapshot::TrafficSnapshot(SimConnectLink &link, QObject *parent) : QObject(parent), m_link(link), m_timer(this)
{
    m_timer.setObjectName(QStringLiteral("traffic"));
    m_timer.setInterval(trafficIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &TrafficSnapshot::request);
}

bool TrafficSnapshot::isUsed() const
{
    return m_isDefined || m_timer.isActive();
}

void TrafficSnapshot::disable()
{
    m_isEnabled = false;
    m_timer.stop();
    m_rows.clear();
    emit received({});
}

void TrafficSnapshot::setRadius(quint32 radius)
{
    m_radius = std::min(radius, largestRadius);
}

void TrafficSnapshot::start()
{
    if (!define())
        return;
    request();
    if (m_link.isOpen()) // who hears of a failed request may close it
        m_timer.start();
}

void TrafficSnapshot::receive(const TypedObjectMessage &message)
{
    if (message.request != trafficRequest)
        return;
    if (message.entry == 0)
        m_rows.clear();
    if (message.data.size() >= qsizetype(sizeof(Contact)) && message.object != 0) {
        Contact contact;
        std::memcpy(&contact, message.data.data(), sizeof contact);
        if (std::isfinite(contact.latitude) && std::isfinite(contact.longitude))
            m_rows.append(rowOf(message.object, contact));
    }
    if (quint64(message.entry) + 1 >= message.outOf)
        emit received(std::exchange(m_rows, {}));
}

void TrafficSnapshot::undefine()
{
    if (m_isDefined)
        m_link.call<&SimConnectFunctions::ClearDataDefinition>(trafficDefinition);
    m_isDefined = false;
}

void TrafficSnapshot::reset()
{
    m_timer.stop();
    m_isDefined = false;
    m_rows.clear();
}

bool TrafficSnapshot::define()
{
    if (m_isDefined)
        return true;
    for (const Field &field : fields) {
        const HRESULT result = m_link.addField(trafficDefinition, field.variable, field.unit, field.type);
        if (result < 0) {
            m_link.call<&SimConnectFunctions::ClearDataDefinition>(trafficDefinition); // the next try starts over
            m_link.fail(QStringLiteral("Failed to register traffic field: %1").arg(QLatin1String(field.variable)),
                        result);
            return false;
        }
    }
    m_isDefined = true;
    return true;
}

void TrafficSnapshot::request()
{
    if (!m_link.isOpen())
        return;
    const HRESULT result = m_link.call<&SimConnectFunctions::RequestDataOnSimObjectType>(
        trafficRequest, trafficDefinition, m_radius, SIMCONNECT_SIMOBJECT_TYPE_AIRCRAFT);
    if (result < 0)
        m_link.fail(QStringLiteral("Failed to request traffic snapshot"), result);
}

} // namespace tarvo::simulator::msfs
