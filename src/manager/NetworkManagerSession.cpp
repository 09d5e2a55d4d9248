// The life of one connection: from the pilot's request to the last line.

#include "fsd/pdu/AddATC.h"
#include "fsd/pdu/AddPilot.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/DeletePilot.h"
#include "manager/NetworkManagerSending.h"

#include "AppConfig.h"
#include "common/Callsign.h"
#include "fsd/pdu/DeleteATC.h"
#include "manager/ConnectRequest.h"
#include "manager/ServerCallsign.h"
#include "network/ApiService.h"

#include <QPointer>

namespace tarvo::manager {

using common::MessageType;
using simulator::Simulator;
using namespace fsd::pdu;

bool NetworkManager::connectToNetwork(const QString &callsign, const QString &typeCode, const QString &selcal,
                                      bool observer)
{
    const ConnectRequest request{common::normalisedCallsign(callsign), typeCode, observer};
    const ConnectConditions conditions{isBusy(), m_simulator && m_dataWatch.isReadyForPilot()};
    if (const QString refusal = refusalOf(request, conditions); !refusal.isEmpty()) {
        notify(refusal, MessageType::Error);
        return false;
    }
    beginSession({request.callsign, normalizedType(typeCode), selcal, observer});
    const quint64 generation = m_generation;
    notify(tr("Connecting to network..."), MessageType::Info);
    if (generation != m_generation)
        return false; // whoever heard the notification has already called it off

    ++m_resolving;
    const bool started = m_fsd.connectToServer(m_fsdHost, m_fsdPort);
    --m_resolving;
    // While a name was looked up anything may have happened, another connection included.
    if (!started && generation == m_generation)
        endSession();
    // An address that can't be reached fails inside the call: the session is then over, as everybody has been told.
    return started && generation == m_generation;
}

void NetworkManager::beginSession(const model::ConnectInfo &info)
{
    ++m_generation;
    m_connectInfo = info;
    m_loginAnnounced = false;
    m_forced = false;
    m_forcedReason.clear();
    m_phase = Phase::Connecting;
    m_log.startFlushing();
}

void NetworkManager::endSession()
{
    ++m_generation;
    m_phase = Phase::Idle;
    m_loginAnnounced = false;
    m_forced = false;
    m_forcedReason.clear();
    m_log.stopFlushing();
}

QString NetworkManager::normalizedType(const QString &typeCode) const
{
    const QString typed = typeCode.trimmed().toUpper();
    if (typed.isEmpty())
        return {};
    // Unlike other pilots' types, the own one is never cut to a code: it goes out as it was typed.
    const QString known = knownDesignator(m_icao, typeCode);
    return known.isEmpty() ? typed : known;
}

void NetworkManager::onNetworkConnected()
{
    const quint64 generation = m_generation;
    notify(tr("Connected to network."), MessageType::Info);
    if (generation == m_generation && !m_config.get(config::authVatsim))
        logIn(password());
}

void NetworkManager::requestFsdToken()
{
    const QPointer<NetworkManager> self(this);
    const quint64 generation = m_generation;
    m_api.getFSDToken([self, generation](bool success, const QString &token, const QString &error) {
        if (self && self->m_generation == generation)
            self->onFsdToken(success, token, error);
    });
}

void NetworkManager::onFsdToken(bool success, const QString &token, const QString &error)
{
    if (success) {
        logIn(token);
        return;
    }
    const quint64 generation = m_generation;
    m_forced = true;
    m_forcedReason = error;
    notify(tr("Network authentication error: %1").arg(error), MessageType::Error);
    if (generation == m_generation)
        m_fsd.disconnectFromServer();
}

void NetworkManager::logIn(const QString &password)
{
    const quint64 generation = m_generation;
    m_loginSecret = password;
    sendLoginPdu();
    if (generation != m_generation)
        return; // a server that has gone shows while a line is sent, and the session is over by then
    sendPdu(ClientQuery(m_connectInfo.callsign, serverCallsign, ClientQueryType::PublicAddress, {}));
    if (generation == m_generation)
        m_reporter.start();
}

void NetworkManager::sendLoginPdu()
{
    const auto revision = m_config.get(config::authVatsim) ? ProtocolRevision::Token : ProtocolRevision::Classic;
    if (m_connectInfo.observer) {
        sendPdu(
            AddATC(m_connectInfo.callsign, realName(), username(), m_loginSecret, NetworkRating::Observer, revision));
        return;
    }
    AddPilot login;
    login.From = m_connectInfo.callsign;
    login.To = serverCallsign;
    login.cid = username();
    login.password = m_loginSecret;
    login.rating = NetworkRating::Observer;
    login.protocolRevision = revision;
    if (m_simulator)
        login.simulatorType = static_cast<SimulatorType>(m_simulator->simulatorType());
    login.realName = realNameWithAirport();
    sendPdu(login);
}

void NetworkManager::completeLogin()
{
    if (m_loginAnnounced)
        return;
    m_loginAnnounced = true;
    m_phase = Phase::Connected;
    const model::ConnectInfo info = m_connectInfo;
    const quint64 generation = m_generation;
    // A pilot reads the same words twice, once for the line and once for the login.
    notify(info.observer ? tr("Connected to network in observer mode.") : tr("Connected to network."),
           MessageType::Info);
    if (generation != m_generation)
        return;
    emit networkConnected(info.callsign);
    if (const std::shared_ptr<Simulator> simulator = m_simulator; simulator && generation == m_generation)
        simulator->networkConnected(info.callsign, info.selcal, info.observer);
}

void NetworkManager::disconnectFromNetwork()
{
    if (!isBusy())
        return;
    m_phase = Phase::Disconnecting;
    deleteAndDisconnect();
}

void NetworkManager::onForceDisconnect(const QString &reason)
{
    if (!isBusy())
        return;
    m_forced = true;
    m_forcedReason = reason;
    deleteAndDisconnect();
}

void NetworkManager::deleteAndDisconnect()
{
    const quint64 generation = m_generation;
    sendDeletePdu();
    // When the server has gone already, the farewell itself ends the session.
    if (generation == m_generation)
        m_fsd.disconnectFromServer();
}

void NetworkManager::sendDeletePdu()
{
    if (m_connectInfo.observer)
        sendPdu(DeleteATC(m_connectInfo.callsign, username()));
    else
        sendPdu(DeletePilot(m_connectInfo.callsign, username()));
}

void NetworkManager::onNetworkDisconnected()
{
    m_reporter.stop();
    const bool forced = m_forced;
    const QString reason = m_forcedReason;
    // The session is over before anybody hears of it, so that a listener may start the next one at once.
    endSession();

    if (!forced)
        notify(tr("Disconnected from network."), MessageType::Info);
    else if (reason.isEmpty())
        notify(tr("Forcibly disconnected from network."), MessageType::Error);
    else
        notify(tr("Forcibly disconnected from network: ") + reason, MessageType::Error);
    // Each to the simulator of the moment: one that comes in by then has been given the aircraft.
    if (const std::shared_ptr<Simulator> simulator = m_simulator)
        simulator->networkDisconnected();
    if (const std::shared_ptr<Simulator> simulator = m_simulator)
        simulator->removeAllAircraft();
    if (const std::shared_ptr<Simulator> simulator = m_simulator)
        simulator->clearControllers();
    emit networkDisconnected(forced);
    forgetTraffic();
}

void NetworkManager::onNetworkError(const QString &error)
{
    const quint64 generation = m_generation;
    notify(withoutSecretInPacket(error, m_loginSecret), MessageType::Error);
    if (m_fsd.isConnected() || generation != m_generation)
        return;
    endSession();
    emit networkDisconnected(false);
    forgetTraffic(); // or the next session would take those who are gone for present
}

} // namespace tarvo::manager
