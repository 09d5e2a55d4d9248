#include "common/Clock.h"
#include "common/OneLine.h"
#include "simulator/msfs/session/DispatchMessage.h"
#include "simulator/msfs/session/RuntimeDetection.h"
#include "simulator/msfs/session/SessionParts.h"
#include "simulator/msfs/session/SimConnectException.h"
#include "simulator/msfs/session/SimConnectSession.h"

#include <QDebug>

// What the session makes of the simulator's messages.
namespace tarvo::simulator::msfs {

namespace {
constexpr quint32 pauseEvent = 20000; ///< nothing subscribes to it yet
}

void SimConnectSession::pump()
{
    while (isOpen()) { // what a message raises may close the session, and open it again
        const QByteArrayView bytes = m_parts->link.nextMessage();
        if (bytes.isNull())
            return;
        if (const auto message = parseMessage(bytes))
            std::visit([this](const auto &value) { receive(value); }, *message);
        else
            tellBroken(bytes.size());
    }
}

void SimConnectSession::tellBroken(qsizetype size)
{
    if (m_parts->broken.add(m_parts->clock.steadyMs()) != common::DropCount::Line::None)
        qWarning().noquote() << QStringLiteral("Dropped a broken SimConnect message of %1 bytes, %2 so far")
                                    .arg(size)
                                    .arg(m_parts->broken.total());
}

void SimConnectSession::receive(const ExceptionMessage &message)
{
    const QString name = QLatin1String(exceptionName(message.code));
    qCritical().noquote() << QStringLiteral("SimConnect exception: %1 (%2), SendID=%3, Index=%4")
                                 .arg(message.code)
                                 .arg(name)
                                 .arg(message.sendId)
                                 .arg(message.index);
    switch (exceptionAction(message.code, m_parts->traffic.isEnabled(), m_parts->traffic.isUsed())) {
    case ExceptionAction::Ignore:
        qWarning().noquote() << QStringLiteral("Ignoring non-fatal SimConnect %1 exception (SendID=%2, Index=%3)")
                                    .arg(name)
                                    .arg(message.sendId)
                                    .arg(message.index);
        break;
    case ExceptionAction::CreateFailed:
        qWarning() << "Ignoring non-fatal CREATE_OBJECT_FAILED to keep SimConnect session alive";
        emit remoteAircraftCreateFailed();
        break;
    case ExceptionAction::DisableTraffic:
        qWarning().noquote() << QStringLiteral("Disabling traffic mapping after SimConnect exception %1 (%2)")
                                    .arg(message.code)
                                    .arg(name);
        setTrafficEnabled(false);
        break;
    case ExceptionAction::Raise:
        emit errorOccurred(SimConnectError::RuntimeError,
                           QStringLiteral("SimConnect exception code: %1 (%2)").arg(message.code).arg(name));
        break;
    }
}

void SimConnectSession::receive(const OpenMessage &message)
{
    qInfo().noquote() << "MSFS Version:" << message.applicationVersion;
    qInfo().noquote() << "SimConnect Version:" << message.simConnectVersion;
    setRuntimeProfile(profileOfApplication(message.applicationName, message.applicationMajor),
                      QStringLiteral("SimConnect open app=%1 version=%2")
                          .arg(common::onOneLine(message.applicationName), message.applicationVersion));
    emit msfsVersionDetected(message.applicationVersion);
    emit simConnectVersionDetected(message.simConnectVersion);
}

void SimConnectSession::receive(const QuitMessage &)
{
    qInfo() << "MSFS quit detected";
    close();
}

void SimConnectSession::receive(const EventMessage &message)
{
    if (message.event == pauseEvent)
        emit dataReceived(UpdateGroup::Environment, {{QStringLiteral("simPaused"), message.data != 0}});
}

void SimConnectSession::receive(const ObjectDataMessage &message)
{
    if (message.request == UserTitle::requestId) {
        const QString title = UserTitle::read(message.data);
        if (title.isEmpty())
            return;
        qInfo().noquote() << "Detected user aircraft container title:" << common::onOneLine(title);
        emit userAircraftTitleDetected(title);
        return;
    }
    if (const auto sample = m_parts->groups.sample(message.request, message.data))
        emit dataReceived(static_cast<UpdateGroup>(message.request), *sample);
    else if (m_parts->unasked.add(m_parts->clock.steadyMs()) != common::DropCount::Line::None)
        qWarning() << "No active definitions found for group:" << message.request;
}

void SimConnectSession::receive(const TypedObjectMessage &message)
{
    m_parts->traffic.receive(message);
}

void SimConnectSession::receive(const AssignedObjectMessage &message)
{
    qInfo().noquote()
        << QStringLiteral("Remote aircraft assigned: req=%1 object=%2").arg(message.request).arg(message.object);
    emit remoteAircraftCreated(message.request, message.object);
}

void SimConnectSession::receive(const InputEventsMessage &message)
{
    m_parts->inputEvents.receive(message);
}

void SimConnectSession::receive(const InputEventValueMessage &message)
{
    if (const auto name = m_parts->inputEvents.nameOf(message))
        emit inputEventValueChanged(*name, message.value);
}

} // namespace tarvo::simulator::msfs
