// What the server and the other clients say, and the client's manners in answering.

#include "fsd/pdu/AddATC.h"
#include "fsd/pdu/AddPilot.h"
#include "fsd/pdu/KillRequest.h"
#include "fsd/pdu/ProtocolError.h"
#include "fsd/pdu/SendFast.h"
#include "fsd/pdu/ServerIdentification.h"
#include "manager/NetworkManagerSending.h"

#include "AppConfig.h"
#include "common/Callsign.h"
#include "fsd/pdu/ClientIdentification.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/Ping.h"
#include "fsd/pdu/Pong.h"
#include "fsd/pdu/TextMessage.h"
#include "manager/ClientIdentity.h"
#include "manager/OneLine.h"
#include "manager/ServerCallsign.h"

#include <QDebug>

namespace tarvo::manager {

using common::MessageType;
using namespace fsd::pdu;

namespace {

constexpr int noFlightPlan = 8; ///< the error type that only answers a question

} // namespace

void NetworkManager::onServerIdentification(const ServerIdentification &pdu)
{
    qInfo().noquote() << "Server version:" << excerpt(pdu.version);
    ClientIdentification answer;
    answer.From = m_connectInfo.callsign;
    answer.To = serverCallsign;
    answer.clientId = clientIdentity::id;
    answer.clientName = clientIdentity::name;
    answer.majorVersion = clientIdentity::majorVersion;
    answer.minorVersion = clientIdentity::minorVersion;
    answer.cid = username();
    answer.systemUniqueId = machineId();
    const quint64 generation = m_generation;
    sendPdu(answer);
    if (generation == m_generation && m_config.get(config::authVatsim))
        requestFsdToken();
}

void NetworkManager::onAddATC(const AddATC &pdu)
{
    completeLoginIfOwn(pdu.From);
}

void NetworkManager::onAddPilot(const AddPilot &pdu)
{
    completeLoginIfOwn(pdu.From);
}

void NetworkManager::completeLoginIfOwn(const QString &callsign)
{
    if (common::normalisedCallsign(callsign) == m_connectInfo.callsign)
        completeLogin();
}

void NetworkManager::onClientQuery(const ClientQuery &pdu)
{
    switch (pdu.queryType) {
    case ClientQueryType::Capabilities:
        answerCapabilities(pdu);
        break;
    case ClientQueryType::Com1Frequency:
        answerQuery(pdu, {QString::number(m_own.radio.com1Frequency / 1000.0, 'f', 3)});
        break;
    case ClientQueryType::RealName:
        answerQuery(pdu, {realNameWithAirport(), QStringLiteral("1")});
        break;
    case ClientQueryType::ClientInformation:
        sendClientInformation(pdu.From);
        break;
    case ClientQueryType::AircraftConfiguration:
        // The text holds colons, which the wire has cut.
        onConfiguration(pdu.From, pdu.payload.join(QLatin1Char(':')));
        break;
    default:
        break;
    }
}

void NetworkManager::answerQuery(const ClientQuery &query, const QStringList &payload)
{
    sendPdu(ClientQueryResponse(m_connectInfo.callsign, query.From, query.queryType, payload));
}

void NetworkManager::answerCapabilities(const ClientQuery &query)
{
    const QString from = query.From; // the original lives only for its signal
    if (!isServer(from))
        emit capabilitiesRequestReceived(from);
    sendOwnCapabilities(from);
}

void NetworkManager::sendClientInformation(const QString &to)
{
    ClientInformation information{.cid = username(),
                                  .nameWithAirport = realNameWithAirport(),
                                  .publicAddress = m_publicAddress,
                                  .simulator = {},
                                  .latitude = m_own.aircraft.latitude,
                                  .longitude = m_own.aircraft.longitude,
                                  .altitudeMslM = m_own.aircraft.altitudeMslM};
    if (m_simulator)
        information.simulator = m_simulator->simulatorType();
    sendPdu(TextMessage(m_connectInfo.callsign, to, information.text()));
}

void NetworkManager::onClientQueryResponse(const ClientQueryResponse &pdu)
{
    switch (pdu.queryType) {
    case ClientQueryType::IsValidAtc:
        onValidAtcAnswer(pdu);
        break;
    case ClientQueryType::Capabilities:
        emit capabilitiesResponseReceived(pdu.From, pdu.payload.join(QLatin1Char(':')));
        break;
    case ClientQueryType::RealName:
        emit realNameReceived(pdu.From, pdu.payload.value(0));
        break;
    case ClientQueryType::Atis:
        onAtisAnswer(pdu);
        break;
    case ClientQueryType::PublicAddress:
        m_publicAddress = pdu.payload.value(0);
        completeLogin();
        break;
    case ClientQueryType::FlightPlan:
        onFlightPlanAnswer(pdu);
        break;
    default:
        break;
    }
}

void NetworkManager::onPing(const Ping &pdu)
{
    sendPdu(Pong(pdu.To, pdu.From, pdu.timestamp));
}

void NetworkManager::onKillRequest(const KillRequest &pdu)
{
    m_forced = true; // the server closes next
    m_forcedReason = pdu.reason;
}

void NetworkManager::onSendFast(const SendFast &pdu)
{
    if (pdu.To.toUpper() == m_connectInfo.callsign)
        m_reporter.setFast(pdu.sendFast);
}

void NetworkManager::onProtocolError(const ProtocolError &pdu)
{
    if (pdu.errorType != noFlightPlan) {
        const QString message = errorWithoutSecret(pdu.parameter, pdu.message, m_loginSecret);
        notify(tr("Network Error: %1").arg(message), MessageType::Error);
        return;
    }
    const QString callsign = common::normalisedCallsign(pdu.parameter);
    if (callsign.isEmpty())
        return;
    m_traffic.typeAnswered(callsign);
    qInfo().noquote() << "No flight plan available for" << excerpt(callsign);
}

void NetworkManager::onRawDataSent(const QString &line)
{
    m_log.writeSent(line, m_loginSecret);
}

void NetworkManager::onRawDataReceived(const QString &line)
{
    m_log.writeReceived(line, m_loginSecret);
}

} // namespace tarvo::manager
