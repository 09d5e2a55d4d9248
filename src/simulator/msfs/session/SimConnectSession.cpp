#include "simulator/msfs/session/SimConnectSession.h"

#include "simulator/msfs/session/RuntimeDetection.h"
#include "simulator/msfs/session/SessionParts.h"
#include "simulator/msfs/session/SimVarWriter.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace tarvo::simulator::msfs {

namespace {

constexpr int dispatchIntervalMs = 50;
constexpr quint32 ownObject = 0; ///< the pilot's aircraft

} // namespace

SimConnectSession::SimConnectSession(std::shared_ptr<SimConnectBinding> binding, QObject *parent,
                                     const common::Clock &clock)
    : QObject(parent),
      m_parts(std::make_unique<Parts>(binding ? std::move(binding) : SimConnectBinding::shared(), clock, this)),
      m_dispatchTimer(this)
{
    m_dispatchTimer.setObjectName(QStringLiteral("dispatch"));
    m_dispatchTimer.setInterval(dispatchIntervalMs);
    connect(&m_dispatchTimer, &QTimer::timeout, this, &SimConnectSession::pump);
    connect(&m_parts->link, &SimConnectLink::failed, this,
            [this](const QString &text) { emit errorOccurred(SimConnectError::RuntimeError, text); });
    connect(&m_parts->traffic, &TrafficSnapshot::received, this, &SimConnectSession::trafficSnapshotReceived);
}

SimConnectSession::~SimConnectSession()
{
    close();
}

bool SimConnectSession::open()
{
    if (isOpen()) {
        qWarning() << "SimConnect already connected";
        return true;
    }
    const QStringList failures = m_parts->link.open();
    if (!isOpen()) {
        QString message = QStringLiteral("Failed to connect to MSFS via SimConnect");
        if (!failures.isEmpty())
            message += QStringLiteral(": ") + failures.join(QStringLiteral("; "));
        qCritical().noquote() << message;
        emit errorOccurred(SimConnectError::ConnectionFailed, message);
        return false;
    }
    const quint32 opening = ++m_openings;
    const QString library = m_parts->link.libraryName();
    m_parts->inputEvents.reset();
    m_dispatchTimer.start();
    setRuntimeProfile(profileOfLibrary(library), QStringLiteral("loaded DLL %1").arg(library));
    if (!isOpen() || m_openings != opening) // whoever heard which one it is has closed it, or opened it anew
        return isOpen();
    qInfo().noquote() << "SimConnect connection established via" << library << "for runtime profile"
                      << displayName(m_profile);
    emit connected();
    return isOpen();
}

void SimConnectSession::close()
{
    if (!isOpen())
        return;
    m_dispatchTimer.stop();
    m_parts->traffic.reset();
    m_parts->link.close();
    m_parts->groups.reset();
    m_parts->title.reset();
    m_parts->inputEvents.reset();
    m_parts->clientEvents.reset();
    m_profile = MsfsRuntimeProfile::Unknown;
    qInfo() << "SimConnect disconnected";
    emit disconnected();
}

bool SimConnectSession::isOpen() const
{
    return m_parts->link.isOpen();
}

void SimConnectSession::registerDefinitions()
{
    if (!m_parts->groups.define(m_profile))
        return;
    m_parts->title.request();
    startTraffic();
    qInfo() << "Successfully registered" << m_parts->groups.bindings().size() << "SimConnect data definitions";
}

void SimConnectSession::subscribeGroup(UpdateGroup group)
{
    m_parts->groups.subscribe(group);
}

void SimConnectSession::unsubscribeGroup(UpdateGroup group)
{
    m_parts->groups.unsubscribe(group);
}

void SimConnectSession::requestGroupOnce(UpdateGroup group)
{
    m_parts->groups.requestOnce(group);
}

void SimConnectSession::enumerateInputEvents()
{
    m_parts->inputEvents.enumerate();
}

void SimConnectSession::setDataValue(SimKey key, const QVariant &value)
{
    if (!isOpen()) {
        qWarning() << "Cannot set data value: not connected";
        return;
    }
    const QList<SimVarBinding> &bindings = m_parts->groups.bindings();
    const auto binding = std::find_if(bindings.cbegin(), bindings.cend(),
                                      [key](const SimVarBinding &candidate) { return candidate.key == key; });
    if (binding == bindings.cend()) {
        qWarning() << "Cannot set data value: no active binding for key" << static_cast<int>(key);
        return;
    }
    const QString failure = writeSimVar(m_parts->link, *binding, ownObject, value);
    if (!failure.isEmpty())
        qCritical().noquote() << QStringLiteral("Failed to set data value: %1").arg(failure);
}

void SimConnectSession::setObjectDataValue(quint32 objectId, SimKey key, const QVariant &value)
{
    if (!isOpen()) {
        qWarning() << "Cannot set object data value: not connected";
        return;
    }
    const std::optional<SimVarBinding> binding = simVarBinding(key, m_profile);
    if (!binding) {
        qWarning() << "Cannot set object data value: no binding for key" << static_cast<int>(key);
        return;
    }
    const QString failure = writeSimVar(m_parts->link, *binding, objectId, value);
    if (!failure.isEmpty())
        qCritical().noquote() << QStringLiteral("Failed to set object %1 data value: %2").arg(objectId).arg(failure);
}

void SimConnectSession::sendCommand(CommandKey key, quint32 data)
{
    m_parts->clientEvents.send(key, data, m_profile);
}

void SimConnectSession::createRemoteAircraft(quint32 requestId, const QString &containerTitle, const QString &livery,
                                             const QString &callsign, const RemotePosition &position)
{
    const RemoteModel model{containerTitle, livery, callsign};
    if (m_parts->remoteObjects.create(requestId, model, position, m_profile) == RemoteObjects::Creation::Refused)
        emit remoteAircraftCreateFailed();
}

void SimConnectSession::removeRemoteAircraft(quint32 objectId, quint32 requestId)
{
    if (m_parts->remoteObjects.remove(objectId, requestId))
        emit remoteAircraftRemoved(requestId, objectId);
}

void SimConnectSession::updateRemoteAircraftPosition(quint32 objectId, const RemotePosition &position)
{
    m_parts->remoteObjects.move(objectId, position);
}

void SimConnectSession::setTrafficEnabled(bool enabled)
{
    if (!enabled) {
        m_parts->traffic.disable();
        return;
    }
    m_parts->traffic.enable();
    if (isOpen() && m_parts->groups.areDefined())
        startTraffic();
}

void SimConnectSession::setTrafficRadius(quint32 radius)
{
    m_parts->traffic.setRadius(radius);
}

void SimConnectSession::startTraffic()
{
    if (m_parts->traffic.isEnabled())
        m_parts->traffic.start();
}

void SimConnectSession::setRuntimeProfile(MsfsRuntimeProfile profile, const QString &reason)
{
    if (profile == MsfsRuntimeProfile::Unknown || profile == m_profile)
        return;
    const MsfsRuntimeProfile old = std::exchange(m_profile, profile);
    const bool wereDefined = isOpen() && m_parts->groups.areDefined();
    if (wereDefined) {
        m_parts->groups.undefine();
        m_parts->traffic.undefine();
        m_parts->title.undefine();
    }
    m_parts->groups.setProfile(profile);
    qInfo().noquote()
        << QStringLiteral("MSFS runtime profile %1 -> %2 from %3").arg(displayName(old), displayName(profile), reason);
    emit runtimeProfileDetected(profile);
    if (!wereDefined || !isOpen())
        return;
    registerDefinitions();
    for (const UpdateGroup group : updateGroups)
        subscribeGroup(group);
    enumerateInputEvents();
}

} // namespace tarvo::simulator::msfs
