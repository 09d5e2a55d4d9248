#include "manager/PeerQueries.h"

#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/Ping.h"
#include "fsd/pdu/PlaneInfoRequest.h"
#include "fsd/pdu/PlaneInfoResponse.h"
#include "fsd/pdu/Pong.h"
#include "fsd/pdu/TextMessage.h"
#include "manager/AircraftTypeRules.h"
#include "manager/ClientIdentity.h"
#include "manager/OneLine.h"
#include "manager/OwnAircraft.h"
#include "manager/ServerCallsign.h"
#include "manager/SessionContext.h"
#include "model/AircraftConfiguration.h"
#include "simulator/Simulator.h"

namespace tarvo::manager {

using namespace fsd::pdu;

namespace {

/// Everybody in reach hears what is sent to this pseudo-callsign.
const QLatin1StringView configurationChannel("@94386");

} // namespace

PeerQueries::PeerQueries(SessionContext &session, OwnAircraft &own, QObject *parent)
    : QObject(parent), m_session(session), m_own(own)
{
}

// --- what others ask ---

void PeerQueries::onClientQuery(const ClientQuery &pdu)
{
    switch (pdu.queryType) {
    case ClientQueryType::Capabilities:
        answerCapabilities(pdu);
        break;
    case ClientQueryType::Com1Frequency:
        answer(pdu, {QString::number(m_own.position().radio.com1Frequency / 1000.0, 'f', 3)});
        break;
    case ClientQueryType::RealName:
        answer(pdu, {m_session.realNameWithAirport(), QStringLiteral("1")});
        break;
    case ClientQueryType::ClientInformation:
        sendClientInformation(pdu.From);
        break;
    case ClientQueryType::AircraftConfiguration:
        // The text holds colons, which the wire has cut.
        emit configurationReceived(pdu.From, pdu.payload.join(QLatin1Char(':')));
        break;
    default:
        break;
    }
}

void PeerQueries::answer(const ClientQuery &query, const QStringList &payload)
{
    m_session.send(ClientQueryResponse(m_session.info.callsign, query.From, query.queryType, payload));
}

void PeerQueries::answerCapabilities(const ClientQuery &query)
{
    const QString from = query.From; // the original lives only for its signal
    if (!isServer(from))
        emit capabilitiesRequestReceived(from);
    sendOwnCapabilities(from);
}

void PeerQueries::sendClientInformation(const QString &to)
{
    const model::UserAircraftData aircraft = m_own.position().aircraft;
    ClientInformation information{.cid = m_session.username(),
                                  .nameWithAirport = m_session.realNameWithAirport(),
                                  .publicAddress = m_publicAddress,
                                  .simulator = {},
                                  .latitude = aircraft.latitude,
                                  .longitude = aircraft.longitude,
                                  .altitudeMslM = aircraft.altitudeMslM};
    if (const std::shared_ptr<simulator::Simulator> simulator = m_session.simulator)
        information.simulator = simulator->simulatorType();
    m_session.send(TextMessage(m_session.info.callsign, to, information.text()));
}

void PeerQueries::onPing(const Ping &pdu)
{
    m_session.send(Pong(pdu.To, pdu.From, pdu.timestamp));
}

void PeerQueries::onPlaneInfoRequest(const PlaneInfoRequest &pdu)
{
    const model::ConnectInfo &own = m_session.info;
    m_session.send(PlaneInfoResponse(own.callsign, pdu.From, own.typeCode, airlineOfCallsign(own.callsign), {}, {}));
}

// --- what is told unasked ---

void PeerQueries::sendConfigurationToAll(const model::AircraftConfiguration &configuration)
{
    sendConfiguration(configurationChannel, configuration);
}

void PeerQueries::sendConfiguration(const QString &to, const model::AircraftConfiguration &configuration)
{
    const model::AircraftConfigurationMessage message{.requestFull = {}, .configuration = configuration};
    m_session.send(
        ClientQuery(m_session.info.callsign, to, ClientQueryType::AircraftConfiguration, {message.compose()}));
}

void PeerQueries::sendOwnCapabilities(const QString &callsign)
{
    m_session.send(
        ClientQueryResponse(m_session.info.callsign, callsign, ClientQueryType::Capabilities,
                            {QStringLiteral("VERSION=1"), QStringLiteral("ATCINFO=1"), QStringLiteral("MODELDESC=1"),
                             QStringLiteral("ACCONFIG=1"), QStringLiteral("VISUPDATE=1")}));
}

// --- what is asked ---

void PeerQueries::requestRealName(const QString &callsign)
{
    m_session.send(ClientQuery(m_session.info.callsign, onOneLine(callsign), ClientQueryType::RealName, {}));
}

void PeerQueries::requestCapabilities(const QString &callsign)
{
    m_session.send(ClientQuery(m_session.info.callsign, callsign, ClientQueryType::Capabilities, {}));
}

} // namespace tarvo::manager
