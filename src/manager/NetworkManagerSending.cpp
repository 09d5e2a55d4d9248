// What goes out at the wish of the pilot, of the simulator, of a timer or of the other managers.

#include "manager/NetworkManagerSending.h"

#include "AppConfig.h"
#include "common/Callsign.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/PlaneInfoRequest.h"
#include "fsd/pdu/RadioMessage.h"
#include "fsd/pdu/TextMessage.h"
#include "fsd/pdu/Wallop.h"
#include "manager/OneLine.h"
#include "manager/ServerCallsign.h"

namespace tarvo::manager {

using simulator::Simulator;
using namespace fsd::pdu;

namespace {

constexpr int wallopColour = 0xEB2F06;
/// Everybody in reach hears what is sent to this pseudo-callsign.
const QLatin1StringView configurationChannel("@94386");

QString asOneLine(QString line)
{
    const QLatin1StringView lineEnd("\r\n");
    if (line.endsWith(lineEnd))
        line.chop(lineEnd.size());
    return onOneLine(line) + lineEnd;
}

} // namespace

void NetworkManager::send(const QString &line)
{
    if (m_fsd.isConnected())
        m_fsd.sendRaw(asOneLine(line));
}

OwnPosition NetworkManager::ownPosition() const
{
    return {.callsign = m_connectInfo.callsign,
            .observer = m_connectInfo.observer,
            .aircraft = m_own.aircraft,
            .radio = m_own.radio,
            .onGround = m_own.config.onGround,
            .paused = m_own.simPaused,
            .trueAltitudeFeet = m_simulator ? m_simulator->trueAltitudeFeet() : 0.0,
            .pressureAltitudeFeet = m_simulator ? m_simulator->pressureAltitudeFeet() : 0.0};
}

// --- text ---

void NetworkManager::sendRadioMessage(const QString &message)
{
    const QList<uint> frequencies = m_transmitFrequencies;
    if (frequencies.isEmpty())
        return;
    sendPdu(RadioMessage(m_connectInfo.callsign, frequencies, message));
    if (const std::shared_ptr<Simulator> simulator = m_simulator)
        simulator->showRadioMessageSent(message);
    emit radioMessageSent(message, frequencies);
}

void NetworkManager::sendPrivateMessage(const QString &to, const QString &message)
{
    sendPdu(TextMessage(m_connectInfo.callsign, to.toUpper(), message));
    if (const std::shared_ptr<Simulator> simulator = m_simulator)
        simulator->showPrivateMessageSent(to, message);
    emit privateMessageSent(to, message);
}

void NetworkManager::sendWallop(const QString &message)
{
    sendPdu(Wallop(m_connectInfo.callsign, message));
    emit wallopSent(message);
    showNotification(QStringLiteral("[WALLOP] %1").arg(message), wallopColour);
}

// --- the own aircraft ---

void NetworkManager::sendConfigurationToAll(const model::AircraftConfiguration &configuration)
{
    sendConfiguration(configurationChannel, configuration);
}

void NetworkManager::sendConfiguration(const QString &to, const model::AircraftConfiguration &configuration)
{
    const model::AircraftConfigurationMessage message{.requestFull = {}, .configuration = configuration};
    sendPdu(ClientQuery(m_connectInfo.callsign, to, ClientQueryType::AircraftConfiguration, {message.compose()}));
}

void NetworkManager::sendOwnCapabilities(const QString &callsign)
{
    sendPdu(
        ClientQueryResponse(m_connectInfo.callsign, callsign, ClientQueryType::Capabilities,
                            {QStringLiteral("VERSION=1"), QStringLiteral("ATCINFO=1"), QStringLiteral("MODELDESC=1"),
                             QStringLiteral("ACCONFIG=1"), QStringLiteral("VISUPDATE=1")}));
}

// --- questions ---

void NetworkManager::requestRealName(const QString &callsign)
{
    sendPdu(ClientQuery(m_connectInfo.callsign, callsign, ClientQueryType::RealName, {}));
}

void NetworkManager::requestControllerAtis(const QString &callsign)
{
    const QString station = common::normalisedCallsign(callsign);
    m_atis.begin(station);
    sendPdu(ClientQuery(m_connectInfo.callsign, station, ClientQueryType::Atis, {}));
}

void NetworkManager::requestValidAtc(const QString &callsign)
{
    sendPdu(ClientQuery(m_connectInfo.callsign, serverCallsign, ClientQueryType::IsValidAtc, {callsign}));
}

void NetworkManager::requestCapabilities(const QString &callsign)
{
    sendPdu(ClientQuery(m_connectInfo.callsign, callsign, ClientQueryType::Capabilities, {}));
}

void NetworkManager::requestPlaneInfoAndFlightPlan(const QString &callsign)
{
    sendPdu(PlaneInfoRequest(m_connectInfo.callsign, callsign));
    sendPdu(ClientQuery(m_connectInfo.callsign, serverCallsign, ClientQueryType::FlightPlan, {callsign}));
    requestFlightPlanByText(callsign);
}

/// The servers of the token protocol take the question as a text.
void NetworkManager::requestFlightPlanByText(const QString &callsign)
{
    if (m_config.get(config::authVatsim))
        sendPdu(TextMessage(m_connectInfo.callsign, serverCallsign, QStringLiteral("FP:%1:GET").arg(callsign)));
}

void NetworkManager::requestFullConfiguration(const QString &callsign)
{
    const model::AircraftConfigurationMessage request{.requestFull = true, .configuration = {}};
    sendPdu(ClientQuery(m_connectInfo.callsign, callsign, ClientQueryType::AircraftConfiguration, {request.compose()}));
}

} // namespace tarvo::manager
