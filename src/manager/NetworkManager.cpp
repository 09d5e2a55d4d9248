#include "manager/NetworkManager.h"

#include "AppConfig.h"
#include "common/Callsign.h"
#include "fsd/pdu/AddATC.h"
#include "fsd/pdu/AddPilot.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/DeleteATC.h"
#include "fsd/pdu/DeletePilot.h"
#include "fsd/pdu/KillRequest.h"
#include "fsd/pdu/Mute.h"
#include "fsd/pdu/ProtocolError.h"
#include "fsd/pdu/SendFast.h"
#include "manager/AircraftTypeRules.h"
#include "manager/ConnectRequest.h"
#include "manager/Login.h"
#include "manager/OneLine.h"
#include "manager/OwnAircraft.h"
#include "manager/PeerQueries.h"
#include "manager/PositionReporter.h"
#include "manager/RemoteTraffic.h"
#include "manager/SessionContext.h"
#include "manager/SessionLog.h"
#include "manager/StationReports.h"
#include "manager/TextTraffic.h"
#include "simulator/Simulator.h"

#include <QDir>
#include <QTimer>

namespace tarvo::manager {

using common::MessageType;
using fsd::FsdClient;
using simulator::Simulator;
using namespace fsd::pdu;

namespace {

constexpr int noFlightPlan = 8; ///< the error type that only answers a question

QString networkLogFolder(const AppConfig &config)
{
    return QDir(config.logsFolder()).filePath(QStringLiteral("network"));
}

} // namespace

NetworkManager::NetworkManager(AppConfig &config, network::ApiService &api, network::SwiftAircraftIcaoService &icao,
                               const ServiceEndpoints &endpoints, const common::Clock &clock, QObject *parent)
    : QObject(parent),
      m_icao(icao),
      m_fsdHost(endpoints.fsdHost),
      m_fsdPort(endpoints.fsdPort),
      m_session(std::make_unique<SessionContext>(config, api, clock, this)),
      m_log(std::make_unique<SessionLog>(networkLogFolder(config), clock))
{
    makeParts();
    connectLine();
    connectMessages();
    connectOwnAircraft();
    connectTexts();
    connectTraffic();
}

NetworkManager::~NetworkManager()
{
    // What the client raises while it closes must not reach an object that is half gone.
    m_session->fsd.disconnect();
}

void NetworkManager::makeParts()
{
    m_own = std::make_unique<OwnAircraft>(*m_session, this);
    m_reporter = std::make_unique<PositionReporter>([this] { return m_own->position(); }, this);
    m_login = std::make_unique<Login>(*m_session, *m_reporter, this);
    m_traffic = std::make_unique<RemoteTraffic>(*m_session, m_icao, this);
    m_texts = std::make_unique<TextTraffic>(*m_session, *m_own, this);
    m_stations = std::make_unique<StationReports>(*m_session, this);
    m_queries = std::make_unique<PeerQueries>(*m_session, *m_own, this);
}

// --- who hears what ---

void NetworkManager::connectLine()
{
    const FsdClient *fsd = &m_session->fsd;
    connect(fsd, &FsdClient::raiseNetworkConnected, this, &NetworkManager::onNetworkConnected);
    connect(fsd, &FsdClient::raiseNetworkDisconnected, this, &NetworkManager::onNetworkDisconnected);
    connect(fsd, &FsdClient::raiseNetworkError, this, &NetworkManager::onNetworkError);
    connect(fsd, &FsdClient::raiseProtocolErrorReceived, this, &NetworkManager::onProtocolError);
    connect(fsd, &FsdClient::raiseKillRequestReceived, this, &NetworkManager::onKillRequest);
    connect(fsd, &FsdClient::raiseRawDataSent, this,
            [this](const QString &line) { m_log->writeSent(line, m_login->secret()); });
    connect(fsd, &FsdClient::raiseRawDataReceived, this,
            [this](const QString &line) { m_log->writeReceived(line, m_login->secret()); });
    connect(m_reporter.get(), &PositionReporter::lineReady, &m_session->fsd, &FsdClient::sendRaw);
    connect(m_login.get(), &Login::tokenRefused, this, &NetworkManager::onTokenRefused);
}

void NetworkManager::connectMessages()
{
    const FsdClient *fsd = &m_session->fsd;
    connect(fsd, &FsdClient::raiseServerIdentificationReceived, m_login.get(), &Login::onServerIdentification);
    connect(fsd, &FsdClient::raiseAddATCReceived, this, [this](const AddATC &pdu) { completeLoginIfOwn(pdu.From); });
    connect(fsd, &FsdClient::raiseAddPilotReceived, this,
            [this](const AddPilot &pdu) { completeLoginIfOwn(pdu.From); });
    connect(fsd, &FsdClient::raiseClientQueryReceived, m_queries.get(), &PeerQueries::onClientQuery);
    connect(fsd, &FsdClient::raiseClientQueryResponseReceived, this, &NetworkManager::onClientQueryResponse);
    connect(fsd, &FsdClient::raisePilotPositionReceived, m_traffic.get(), &RemoteTraffic::onPilotPosition);
    connect(fsd, &FsdClient::raiseFastPilotPositionReceived, m_traffic.get(), &RemoteTraffic::onFastPilotPosition);
    connect(fsd, &FsdClient::raiseATCPositionReceived, m_stations.get(), &StationReports::onATCPosition);
    connect(fsd, &FsdClient::raiseDeletePilotReceived, m_traffic.get(), &RemoteTraffic::onDeletePilot);
    connect(fsd, &FsdClient::raiseDeleteATCReceived, m_stations.get(), &StationReports::onDeleteATC);
    connect(fsd, &FsdClient::raisePingReceived, m_queries.get(), &PeerQueries::onPing);
    connect(fsd, &FsdClient::raiseTextMessageReceived, m_texts.get(), &TextTraffic::onTextMessage);
    connect(fsd, &FsdClient::raiseRadioMessageReceived, m_texts.get(), &TextTraffic::onRadioMessage);
    connect(fsd, &FsdClient::raiseBroadcastMessageReceived, m_texts.get(), &TextTraffic::onBroadcastMessage);
    connect(fsd, &FsdClient::raisePlaneInfoRequestReceived, m_queries.get(), &PeerQueries::onPlaneInfoRequest);
    connect(fsd, &FsdClient::raisePlaneInfoResponseReceived, m_traffic.get(), &RemoteTraffic::onPlaneInfoResponse);
    connect(fsd, &FsdClient::raiseFlightPlanReceived, m_traffic.get(), &RemoteTraffic::onFlightPlan);
    connect(fsd, &FsdClient::raiseSendFastReceived, this, &NetworkManager::onSendFast);
    connect(fsd, &FsdClient::raiseMuteReceived, this, [this](const Mute &pdu) { emit muteReceived(pdu.mute); });
}

void NetworkManager::connectOwnAircraft()
{
    const OwnAircraft *own = m_own.get();
    connect(own, &OwnAircraft::stateChanged, this, &NetworkManager::simulatorConnectionStateChanged);
    connect(own, &OwnAircraft::dataUpdated, this, &NetworkManager::simulatorDataUpdated);
    connect(own, &OwnAircraft::radioChanged, this, &NetworkManager::radioStatesUpdate);
}

void NetworkManager::connectTexts()
{
    const TextTraffic *texts = m_texts.get();
    connect(texts, &TextTraffic::serverMessageReceived, this, &NetworkManager::serverMessageReceived);
    connect(texts, &TextTraffic::privateMessageReceived, this, &NetworkManager::privateMessageReceived);
    connect(texts, &TextTraffic::privateMessageSent, this, &NetworkManager::privateMessageSent);
    connect(texts, &TextTraffic::broadcastMessageReceived, this, &NetworkManager::broadcastMessageReceived);
    connect(texts, &TextTraffic::radioMessageSent, this, &NetworkManager::radioMessageSent);
    connect(texts, &TextTraffic::wallopSent, this, &NetworkManager::wallopSent);
    connect(texts, &TextTraffic::radioMessageReceived, this, &NetworkManager::radioMessageReceived);
    connect(texts, &TextTraffic::selcalAlertReceived, this, &NetworkManager::selcalAlertReceived);

    const StationReports *stations = m_stations.get();
    connect(stations, &StationReports::controllerUpdateReceived, this, &NetworkManager::controllerUpdateReceived);
    connect(stations, &StationReports::controllerDeleted, this, &NetworkManager::controllerDeleted);
    connect(stations, &StationReports::isValidAtcReceived, this, &NetworkManager::isValidAtcReceived);
    connect(stations, &StationReports::controllerAtisReceived, this, &NetworkManager::controllerAtisReceived);
}

void NetworkManager::connectTraffic()
{
    const RemoteTraffic *traffic = m_traffic.get();
    connect(traffic, &RemoteTraffic::slowPositionUpdateReceived, this, &NetworkManager::slowPositionUpdateReceived);
    connect(traffic, &RemoteTraffic::fastPositionUpdateReceived, this, &NetworkManager::fastPositionUpdateReceived);
    connect(traffic, &RemoteTraffic::aircraftInfoReceived, this, &NetworkManager::aircraftInfoReceived);
    connect(traffic, &RemoteTraffic::aircraftConfigurationInfoReceived, this,
            &NetworkManager::aircraftConfigurationInfoReceived);
    connect(traffic, &RemoteTraffic::disableVoiceTransmit, this, &NetworkManager::disableVoiceTransmit);
    connect(traffic, &RemoteTraffic::pilotDeleted, this, &NetworkManager::pilotDeleted);

    const PeerQueries *queries = m_queries.get();
    connect(queries, &PeerQueries::configurationReceived, m_traffic.get(), &RemoteTraffic::onConfiguration);
    connect(queries, &PeerQueries::capabilitiesRequestReceived, this, &NetworkManager::capabilitiesRequestReceived);
}

// --- the life of one connection: from the pilot's request to the last line ---

bool NetworkManager::isBusy() const
{
    return m_phase != Phase::Idle || m_session->fsd.isConnected();
}

bool NetworkManager::isResolving() const
{
    return m_resolving > 0 || m_session->fsd.isResolving();
}

bool NetworkManager::connectToNetwork(const QString &callsign, const QString &typeCode, const QString &selcal,
                                      bool observer)
{
    const ConnectRequest request{common::normalisedCallsign(callsign), typeCode, observer};
    const ConnectConditions conditions{isBusy(), m_session->simulator && m_own->isReadyForPilot()};
    if (const QString refusal = refusalOf(request, conditions); !refusal.isEmpty()) {
        notify(refusal, MessageType::Error);
        return false;
    }
    beginSession({request.callsign, normalizedType(typeCode), selcal, observer});
    const SessionMark mark = m_session->mark();
    notify(tr("Connecting to network..."), MessageType::Info);
    if (!mark.holds())
        return false; // whoever heard the notification has already called it off

    ++m_resolving;
    const bool started = m_session->fsd.connectToServer(m_fsdHost, m_fsdPort);
    --m_resolving;
    // While a name was looked up anything may have happened, another connection included.
    if (!started && mark.holds())
        endSession();
    // An address that can't be reached fails inside the call: the session is then over, as everybody has been told.
    return started && mark.holds();
}

void NetworkManager::beginSession(const model::ConnectInfo &info)
{
    m_session->sessions.next();
    m_session->info = info;
    m_loginAnnounced = false;
    m_forced = false;
    m_forcedReason.clear();
    m_phase = Phase::Connecting;
    m_log->startFlushing();
}

void NetworkManager::endSession()
{
    m_session->sessions.next();
    m_phase = Phase::Idle;
    m_loginAnnounced = false;
    m_forced = false;
    m_forcedReason.clear();
    m_own->forgetLastPosition();
    m_log->stopFlushing();
}

QString NetworkManager::normalizedType(const QString &typeCode) const
{
    const QString typed = onOneLine(typeCode.trimmed().toUpper());
    if (typed.isEmpty())
        return {};
    // Unlike other pilots' types, the own one is never cut to a code: it goes out as it was typed.
    const QString known = knownDesignator(m_icao, typeCode);
    return known.isEmpty() ? typed : known;
}

void NetworkManager::onNetworkConnected()
{
    const SessionMark mark = m_session->mark();
    notify(tr("Connected to network."), MessageType::Info);
    if (mark.holds())
        m_login->onNetworkConnected();
}

void NetworkManager::onTokenRefused(const QString &error)
{
    const SessionMark mark = m_session->mark();
    m_forced = true;
    m_forcedReason = error;
    notify(tr("Network authentication error: %1").arg(error), MessageType::Error);
    if (mark.holds())
        m_session->fsd.disconnectFromServer();
}

void NetworkManager::completeLoginIfOwn(const QString &callsign)
{
    if (common::normalisedCallsign(callsign) == m_session->info.callsign)
        completeLogin();
}

void NetworkManager::completeLogin()
{
    if (m_loginAnnounced)
        return;
    m_loginAnnounced = true;
    m_phase = Phase::Connected;
    const model::ConnectInfo info = m_session->info;
    const SessionMark mark = m_session->mark();
    // A pilot reads the same words twice, once for the line and once for the login.
    notify(info.observer ? tr("Connected to network in observer mode.") : tr("Connected to network."),
           MessageType::Info);
    if (!mark.holds())
        return;
    emit networkConnected(info.callsign);
    if (!mark.holds())
        return;
    if (const std::shared_ptr<Simulator> simulator = m_session->simulator)
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
    const SessionMark mark = m_session->mark();
    sendDeletePdu();
    // When the server has gone already, the farewell itself ends the session.
    if (mark.holds())
        m_session->fsd.disconnectFromServer();
}

void NetworkManager::sendDeletePdu()
{
    if (m_session->info.observer)
        m_session->send(DeleteATC(m_session->info.callsign, m_session->username()));
    else
        m_session->send(DeletePilot(m_session->info.callsign, m_session->username()));
}

void NetworkManager::onNetworkDisconnected()
{
    m_reporter->stop();
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
    tellSimulatorOfTheEnd();
    emit networkDisconnected(forced);
    m_traffic->forget();
}

/// Each to the simulator of the moment: one that comes in by then has been given the aircraft.
void NetworkManager::tellSimulatorOfTheEnd()
{
    if (const std::shared_ptr<Simulator> simulator = m_session->simulator)
        simulator->networkDisconnected();
    clearSimulator();
}

void NetworkManager::onNetworkError(const QString &error)
{
    const SessionMark mark = m_session->mark();
    notify(withoutSecretInPacket(error, m_login->secret()), MessageType::Error);
    if (!mark.holds() || m_session->fsd.isConnected())
        return;
    endSession();
    emit networkDisconnected(false);
    m_traffic->forget(); // or the next session would take those who are gone for present
}

void NetworkManager::notify(const QString &message, MessageType type)
{
    emit notificationPosted(message, type);
}

// --- what the server says that no part handles alone ---

void NetworkManager::onClientQueryResponse(const ClientQueryResponse &pdu)
{
    switch (pdu.queryType) {
    case ClientQueryType::IsValidAtc:
        m_stations->onValidAtcAnswer(pdu);
        break;
    case ClientQueryType::Capabilities:
        emit capabilitiesResponseReceived(pdu.From, pdu.payload.join(QLatin1Char(':')));
        break;
    case ClientQueryType::RealName:
        emit realNameReceived(pdu.From, pdu.payload.value(0));
        break;
    case ClientQueryType::Atis:
        m_stations->onAtisAnswer(pdu);
        break;
    case ClientQueryType::PublicAddress:
        m_queries->setPublicAddress(pdu.payload.value(0));
        completeLogin();
        break;
    case ClientQueryType::FlightPlan:
        m_traffic->onFlightPlanAnswer(pdu);
        break;
    default:
        break;
    }
}

void NetworkManager::onKillRequest(const KillRequest &pdu)
{
    m_forced = true; // the server closes next
    m_forcedReason = pdu.reason;
}

void NetworkManager::onSendFast(const SendFast &pdu)
{
    if (pdu.To.toUpper() == m_session->info.callsign)
        m_reporter->setFast(pdu.sendFast);
}

void NetworkManager::onProtocolError(const ProtocolError &pdu)
{
    if (pdu.errorType != noFlightPlan) {
        const QString message = errorWithoutSecret(pdu.parameter, pdu.message, m_login->secret());
        notify(tr("Network Error: %1").arg(message), MessageType::Error);
    } else if (const QString callsign = common::normalisedCallsign(pdu.parameter); !callsign.isEmpty()) {
        m_traffic->onNoFlightPlan(callsign);
    }
}

// --- the simulator ---

std::shared_ptr<Simulator> NetworkManager::simulator() const
{
    return m_session->simulator;
}

void NetworkManager::setSimulator(std::shared_ptr<Simulator> simulator)
{
    if (!simulator)
        return;
    const std::shared_ptr<Simulator> previous = m_session->simulator;
    releaseSimulator();
    m_session->simulator = std::move(simulator);
    const std::weak_ptr<Simulator> installed = m_session->simulator;
    connectSimulator();
    m_own->startOver();
    m_traffic->giveToSimulator();
    emit simulatorChanged();

    // The earlier one goes with the shot: it may be about to return from the signal in which it was replaced.
    QTimer::singleShot(0, this, [this, previous, installed] {
        const std::shared_ptr<Simulator> current = installed.lock();
        if (current && current == m_session->simulator)
            current->reconnectSimulator();
    });
}

void NetworkManager::releaseSimulator()
{
    clearSimulator();
    m_own->stopListening();
    m_simulatorConnections.clear();
}

void NetworkManager::clearSimulator()
{
    if (const std::shared_ptr<Simulator> simulator = m_session->simulator)
        simulator->removeAllAircraft();
    if (const std::shared_ptr<Simulator> simulator = m_session->simulator)
        simulator->clearControllers();
}

void NetworkManager::connectSimulator()
{
    const Simulator *simulator = m_session->simulator.get();
    m_simulatorConnections.add({
        connect(simulator, &Simulator::requestStationInfo, this, &NetworkManager::requestControllerAtis),
        connect(simulator, &Simulator::radioMessageSent, this, &NetworkManager::sendRadioMessage),
        connect(simulator, &Simulator::privateMessageSent, this, &NetworkManager::sendPrivateMessage),
        connect(simulator, &Simulator::forceDisconnect, this, &NetworkManager::onForceDisconnect),
        connect(simulator, &Simulator::restarted, this, &NetworkManager::onSimulatorRestarted),
        connect(simulator, &Simulator::simConnectionFailed, this, &NetworkManager::simulatorConnectionFailed),
        connect(simulator, &Simulator::pluginVersionChecked, this, &NetworkManager::simulatorPluginStatusUpdated),
        connect(simulator, &Simulator::cslValidationChecked, this, &NetworkManager::simulatorCslStatusUpdated),
        connect(simulator, &Simulator::trafficMappingStatusChanged, this,
                &NetworkManager::simulatorTrafficMappingStatusUpdated),
        connect(simulator, &Simulator::xplaneVersionUpdated, this, &NetworkManager::simulatorXPlaneVersionUpdated),
        connect(simulator, &Simulator::trafficSnapshotChanged, this, &NetworkManager::simulatorTrafficSnapshotUpdated),
    });
    m_traffic->listenToSimulator();
}

void NetworkManager::onSimulatorRestarted()
{
    clearSimulator();
    m_traffic->giveToSimulator();
}

void NetworkManager::reconnectSimulator()
{
    if (const std::shared_ptr<Simulator> simulator = m_session->simulator)
        simulator->reconnectSimulator();
}

// --- what the pages and the other managers ask for ---

const model::ConnectInfo &NetworkManager::connectInfo() const
{
    return m_session->info;
}

QList<uint> NetworkManager::transmitFrequencies() const
{
    return m_own->transmitFrequencies();
}

void NetworkManager::sendRadioMessage(const QString &message)
{
    m_texts->sendRadioMessage(message);
}

void NetworkManager::sendPrivateMessage(const QString &to, const QString &message)
{
    m_texts->sendPrivateMessage(to, message);
}

void NetworkManager::sendWallop(const QString &message)
{
    m_texts->sendWallop(message);
}

void NetworkManager::sendConfigurationToAll(const model::AircraftConfiguration &configuration)
{
    m_queries->sendConfigurationToAll(configuration);
}

void NetworkManager::sendConfiguration(const QString &to, const model::AircraftConfiguration &configuration)
{
    m_queries->sendConfiguration(to, configuration);
}

void NetworkManager::sendOwnCapabilities(const QString &callsign)
{
    m_queries->sendOwnCapabilities(callsign);
}

void NetworkManager::requestCapabilities(const QString &callsign)
{
    m_queries->requestCapabilities(callsign);
}

void NetworkManager::requestRealName(const QString &callsign)
{
    m_queries->requestRealName(callsign);
}

void NetworkManager::requestControllerAtis(const QString &callsign)
{
    m_stations->requestControllerAtis(callsign);
}

void NetworkManager::requestValidAtc(const QString &callsign)
{
    m_stations->requestValidAtc(callsign);
}

void NetworkManager::requestPlaneInfoAndFlightPlan(const QString &callsign)
{
    m_traffic->requestPlaneInfoAndFlightPlan(callsign);
}

void NetworkManager::requestFullConfiguration(const QString &callsign)
{
    m_traffic->requestFullConfiguration(callsign);
}

std::optional<model::RemoteAircraft> NetworkManager::remoteAircraft(const QString &callsign) const
{
    const model::RemoteAircraft *aircraft = m_traffic->table().find(callsign);
    return aircraft ? std::optional(*aircraft) : std::nullopt;
}

bool NetworkManager::knowsAircraft(const QString &callsign) const
{
    return m_traffic->table().find(callsign) != nullptr;
}

QList<model::RemoteAircraft> NetworkManager::remoteAircraft() const
{
    return m_traffic->table().all();
}

} // namespace tarvo::manager
