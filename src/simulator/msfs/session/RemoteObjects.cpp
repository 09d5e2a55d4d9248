#include "simulator/msfs/session/RemoteObjects.h"

#include "common/OneLine.h"
#include "simulator/msfs/session/SimConnectLink.h"
#include "simulator/msfs/session/SimConnectSession.h"

#include <QDebug>

#include <algorithm>

namespace tarvo::simulator::msfs {

using common::excerpt;

namespace {

constexpr DWORD waypointDefinition = 30000;
constexpr qsizetype longestTailNumber = 11; // characters

/// Never half of a character that takes two.
QString tailNumber(const QString &callsign)
{
    const QString cut = callsign.left(longestTailNumber);
    const bool isSplit = cut.size() < callsign.size() && cut.back().isHighSurrogate();
    return isSplit ? cut.chopped(1) : cut;
}

/// Knots; a negative speed, or one that is no number, is none.
double speedOf(const RemotePosition &position)
{
    return std::max(0.0, position.speedKnots);
}

SIMCONNECT_DATA_INITPOSITION initialPosition(const RemotePosition &position)
{
    constexpr double fastest = 100'000; // what fits into the structure, by far
    return {.Latitude = position.latitude,
            .Longitude = position.longitude,
            .Altitude = position.altitudeFeet,
            .Pitch = position.pitch,
            .Bank = position.bank,
            .Heading = position.heading,
            .OnGround = position.onGround ? 1U : 0U,
            .Airspeed = static_cast<DWORD>(std::min(speedOf(position), fastest))};
}

/// The simulator finds pitch, bank and heading on its own way there.
SIMCONNECT_DATA_WAYPOINT waypoint(const RemotePosition &position)
{
    return {.Latitude = position.latitude,
            .Longitude = position.longitude,
            .Altitude = position.altitudeFeet,
            .Flags = SIMCONNECT_WAYPOINT_SPEED_REQUESTED | (position.onGround ? SIMCONNECT_WAYPOINT_ON_GROUND : 0U),
            .ktsSpeed = speedOf(position),
            .percentThrottle = 0.0};
}

} // namespace

RemoteObjects::RemoteObjects(SimConnectLink &link, bool &waypointIsDefined)
    : m_link(link), m_waypointIsDefined(waypointIsDefined)
{
}

RemoteObjects::Creation RemoteObjects::create(quint32 requestId, const RemoteModel &model,
                                              const RemotePosition &position, MsfsRuntimeProfile profile)
{
    if (!m_link.isOpen()) {
        qWarning() << "Cannot create remote aircraft: not connected";
        return Creation::NotTried;
    }
    const QString title = model.title.trimmed();
    if (title.isEmpty()) {
        qWarning() << "Cannot create remote aircraft: empty container title";
        return Creation::NotTried;
    }
    const QByteArray titleBytes = title.toUtf8();
    const QByteArray tail = tailNumber(model.callsign).toUtf8();
    const SIMCONNECT_DATA_INITPOSITION start = initialPosition(position);
    HRESULT result = simConnectFailed;
    if (profile == MsfsRuntimeProfile::Msfs2024 && m_link.has<&SimConnectFunctions::AICreateNonATCAircraft_EX1>()) {
        result = m_link.call<&SimConnectFunctions::AICreateNonATCAircraft_EX1>(
            titleBytes.constData(), model.livery.toUtf8().constData(), tail.constData(), start, requestId);
        if (result < 0)
            qWarning().noquote() << QStringLiteral("AICreateNonATCAircraft_EX1 failed for %1/%2, retrying legacy API")
                                        .arg(excerpt(title), excerpt(model.callsign));
    }
    if (result < 0)
        result = m_link.call<&SimConnectFunctions::AICreateNonATCAircraft>(titleBytes.constData(), tail.constData(),
                                                                           start, requestId);
    if (result < 0) {
        qWarning().noquote() << withResult(QStringLiteral("Failed to create remote aircraft %1 with container %2")
                                               .arg(excerpt(model.callsign), excerpt(title)),
                                           result);
        return Creation::Refused;
    }
    qInfo().noquote() << QStringLiteral(
                             "Create remote aircraft request submitted: req=%1 callsign=%2 container=%3 livery=%4")
                             .arg(QString::number(requestId), excerpt(model.callsign), excerpt(title),
                                  excerpt(model.livery));
    return Creation::Submitted;
}

bool RemoteObjects::remove(quint32 object, quint32 requestId)
{
    if (!m_link.isOpen()) {
        qWarning() << "Cannot remove remote aircraft: not connected";
        return false;
    }
    const HRESULT result = m_link.call<&SimConnectFunctions::AIRemoveObject>(object, requestId);
    if (result < 0)
        m_link.fail(QStringLiteral("Failed to remove remote aircraft object %1").arg(object), result);
    return result >= 0;
}

void RemoteObjects::move(quint32 object, const RemotePosition &position)
{
    if (!m_link.isOpen()) {
        qWarning() << "Cannot update remote aircraft position: not connected";
        return;
    }
    if (!defineWaypoint())
        return;
    SIMCONNECT_DATA_WAYPOINT target = waypoint(position);
    const HRESULT result = m_link.call<&SimConnectFunctions::SetDataOnSimObject>(
        waypointDefinition, object, 0U, 1U, static_cast<DWORD>(sizeof target), static_cast<void *>(&target));
    if (result < 0)
        m_link.fail(QStringLiteral("Failed to update remote aircraft object %1 position").arg(object), result);
}

/// Deliberate: once in the program's life, although another session would need it anew.
bool RemoteObjects::defineWaypoint()
{
    if (m_waypointIsDefined)
        return true;
    const HRESULT result =
        m_link.addField(waypointDefinition, "AI WAYPOINT LIST", "number", SIMCONNECT_DATATYPE_WAYPOINT);
    m_waypointIsDefined = result >= 0;
    if (!m_waypointIsDefined)
        m_link.fail(QStringLiteral("Failed to register AI waypoint data definition"), result);
    return m_waypointIsDefined;
}

} // namespace tarvo::simulator::msfs
