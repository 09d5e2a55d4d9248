#include "manager/SessionLifecycle.h"

#include "common/Callsign.h"
#include "fsd/pdu/DeleteATC.h"
#include "fsd/pdu/DeletePilot.h"
#include "fsd/pdu/KillRequest.h"
#include "manager/SessionContext.h"
#include "simulator/Simulator.h"

#include <QScopedValueRollback>

namespace tarvo::manager {

using common::MessageType;
using simulator::Simulator;
using namespace fsd::pdu;

SessionLifecycle::SessionLifecycle(SessionContext &session, QObject *parent) : QObject(parent), m_session(session) {}

// --- the beginning ---

bool SessionLifecycle::begin(const model::ConnectInfo &info, const QString &host, quint16 port)
{
    const QScopedValueRollback<int> onStack(m_resolving, m_resolving + 1);
    startOver(Phase::Connecting);
    m_session.info = info;
    emit began();
    const SessionMark mark = m_session.mark();
    notify(tr("Connecting to network..."), MessageType::Info);
    if (!mark.holds())
        return false; // whoever heard the notification has already called it off

    const bool started = m_session.fsd.connectToServer(host, port);
    // While a name was looked up anything may have happened, another connection included.
    if (!started && mark.holds())
        end(Phase::Idle);
    // An address that can't be reached fails inside the call: the session is then over, as everybody has been told.
    return started && mark.holds();
}

/// No mark of the last session holds from now on.
void SessionLifecycle::startOver(Phase phase)
{
    m_session.sessions.next();
    m_phase = phase;
    m_forced.reset();
}

void SessionLifecycle::onNetworkConnected()
{
    const SessionMark mark = m_session.mark();
    notify(tr("Connected to network."), MessageType::Info);
    if (mark.holds())
        emit lineUp();
}

void SessionLifecycle::onAnnounced(const QString &callsign)
{
    if (common::normalisedCallsign(callsign) == m_session.info.callsign)
        completeLogin();
}

void SessionLifecycle::completeLogin()
{
    if (m_phase != Phase::Connecting)
        return;
    m_phase = Phase::Connected;
    const model::ConnectInfo info = m_session.info;
    const SessionMark mark = m_session.mark();
    // A pilot reads the same words twice, once for the line and once for the login.
    notify(info.observer ? tr("Connected to network in observer mode.") : tr("Connected to network."),
           MessageType::Info);
    if (!mark.holds())
        return;
    emit networkConnected(info.callsign);
    if (!mark.holds())
        return;
    if (const std::shared_ptr<Simulator> simulator = m_session.simulator)
        simulator->networkConnected(info.callsign, info.selcal, info.observer);
}

// --- the end ---

void SessionLifecycle::leave()
{
    if (canLeave())
        deleteAndDisconnect();
}

void SessionLifecycle::forceOut(const QString &reason)
{
    if (!canLeave())
        return;
    m_forced = reason;
    deleteAndDisconnect();
}

void SessionLifecycle::deleteAndDisconnect()
{
    const SessionMark mark = m_session.mark();
    sendDeletePdu();
    // When the server has gone already, the farewell itself ends the session.
    if (mark.holds())
        m_session.fsd.disconnectFromServer();
}

void SessionLifecycle::sendDeletePdu()
{
    if (m_session.info.observer)
        m_session.send(DeleteATC(m_session.info.callsign, m_session.username()));
    else
        m_session.send(DeletePilot(m_session.info.callsign, m_session.username()));
}

void SessionLifecycle::onKillRequest(const KillRequest &pdu)
{
    m_forced = pdu.reason;
}

void SessionLifecycle::onTokenRefused(const QString &error)
{
    const SessionMark mark = m_session.mark();
    m_forced = error;
    notify(tr("Network authentication error: %1").arg(error), MessageType::Error);
    if (mark.holds())
        m_session.fsd.disconnectFromServer();
}

void SessionLifecycle::onNetworkDisconnected()
{
    const std::optional<QString> forced = m_forced;
    end(Phase::TellingTheEnd);
    if (!forced)
        notify(tr("Disconnected from network."), MessageType::Info);
    else if (forced->isEmpty())
        notify(tr("Forcibly disconnected from network."), MessageType::Error);
    else
        notify(tr("Forcibly disconnected from network: ") + *forced, MessageType::Error);
    tellSimulatorOfTheEnd();
    emit networkDisconnected(forced.has_value());
    m_phase = Phase::Idle;
}

void SessionLifecycle::onNetworkError(const QString &error)
{
    const SessionMark mark = m_session.mark();
    notify(error, MessageType::Error);
    if (!mark.holds() || m_session.fsd.isConnected())
        return;
    end(Phase::TellingTheEnd);
    emit networkDisconnected(false);
    m_phase = Phase::Idle;
}

void SessionLifecycle::end(Phase phase)
{
    startOver(phase);
    emit ended();
}

/// Looks for the simulator twice: the first call may lead to another one, which is given the aircraft.
void SessionLifecycle::tellSimulatorOfTheEnd()
{
    if (const std::shared_ptr<Simulator> simulator = m_session.simulator)
        simulator->networkDisconnected();
    m_session.clearSimulator();
}

void SessionLifecycle::notify(const QString &message, MessageType type)
{
    emit notificationPosted(message, type);
}

} // namespace tarvo::manager
