#include "manager/NetworkManager.h"

#include "AppConfig.h"
#include "common/Callsign.h"
#include "fsd/pdu/AddATC.h"
#include "fsd/pdu/AddPilot.h"
#include "fsd/pdu/ClientQueryResponse.h"
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
#include "manager/SessionLifecycle.h"
#include "manager/SessionLog.h"
#include "manager/StationReports.h"
#include "manager/TextTraffic.h"
#include "manager/VoiceRadios.h"
#include "simulator/Simulator.h"
#include "voice/engine/SoundThread.h"

#include <QDir>
#include <QTimer>

#include <utility>

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
                               const ServiceEndpoints &endpoints, const common::Clock &clock,
                               std::shared_ptr<voice::SoundThread> sound, QObject *parent)
    : QObject(parent),
      m_icao(icao),
      m_fsdHost(endpoints.fsdHost),
      m_fsdPort(endpoints.fsdPort),
      m_session(std::make_unique<SessionContext>(config, api, clock, this)),
      m_voice(std::make_unique<VoiceRadios>(config, sound ? std::move(sound) : std::make_shared<voice::SoundThread>(),
                                            endpoints, clock)),
      m_log(std::make_unique<SessionLog>(networkLogFolder(config), clock))
{
    makeParts();
    connectLife();
    connectLine();
    connectMessages();
    connectOwnAircraft();
    connectTexts();
    connectTraffic();
    connectVoice();
}

NetworkManager::~NetworkManager()
{
    // What the client raises while it closes must not reach an object that is half gone.
    m_session->fsd.disconnect();
}

void NetworkManager::makeParts()
{
    m_life = std::make_unique<SessionLifecycle>(*m_session, this);
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
    connect(fsd, &FsdClient::raiseNetworkConnected, m_life.get(), &SessionLifecycle::onNetworkConnected);
    connect(fsd, &FsdClient::raiseNetworkDisconnected, m_life.get(), &SessionLifecycle::onNetworkDisconnected);
    connect(fsd, &FsdClient::raiseNetworkError, this, &NetworkManager::onNetworkError);
    connect(fsd, &FsdClient::raiseProtocolErrorReceived, this, &NetworkManager::onProtocolError);
    connect(fsd, &FsdClient::raiseKillRequestReceived, m_life.get(), &SessionLifecycle::onKillRequest);
    connect(fsd, &FsdClient::raiseRawDataSent, this,
            [this](const QString &line) { m_log->writeSent(line, m_login->secret()); });
    connect(fsd, &FsdClient::raiseRawDataReceived, this,
            [this](const QString &line) { m_log->writeReceived(line, m_login->secret()); });
    connect(m_reporter.get(), &PositionReporter::lineReady, &m_session->fsd, &FsdClient::sendRaw);
}

void NetworkManager::connectLife()
{
    const SessionLifecycle *life = m_life.get();
    connect(life, &SessionLifecycle::began, m_own.get(), &OwnAircraft::onSessionBegan);
    connect(life, &SessionLifecycle::began, this, [this] { m_log->startFlushing(); });
    connect(life, &SessionLifecycle::lineUp, m_login.get(), &Login::onNetworkConnected);
    connect(life, &SessionLifecycle::ended, m_reporter.get(), &PositionReporter::stop);
    connect(life, &SessionLifecycle::ended, this, [this] { m_log->stopFlushing(); });
    connect(life, &SessionLifecycle::networkConnected, this, &NetworkManager::networkConnected);
    connect(life, &SessionLifecycle::networkDisconnected, this, &NetworkManager::networkDisconnected);
    // Behind all listeners of this object.
    connect(life, &SessionLifecycle::networkDisconnected, m_traffic.get(), &RemoteTraffic::forget);
    connect(life, &SessionLifecycle::notificationPosted, this, &NetworkManager::notificationPosted);
    connect(m_login.get(), &Login::tokenRefused, m_life.get(), &SessionLifecycle::onTokenRefused);
}

void NetworkManager::connectMessages()
{
    const FsdClient *fsd = &m_session->fsd;
    connect(fsd, &FsdClient::raiseServerIdentificationReceived, m_login.get(), &Login::onServerIdentification);
    connect(fsd, &FsdClient::raiseAddATCReceived, m_life.get(),
            [this](const AddATC &pdu) { m_life->onAnnounced(pdu.From); });
    connect(fsd, &FsdClient::raiseAddPilotReceived, m_life.get(),
            [this](const AddPilot &pdu) { m_life->onAnnounced(pdu.From); });
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
    connect(own, &OwnAircraft::radioChanged, m_voice.get(), &VoiceRadios::tell); // first, the pages then
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

void NetworkManager::connectVoice()
{
    connect(m_voice.get(), &VoiceRadios::ready, this, [this] { m_voice->tell(m_own->data().radio); });
    // Behind all listeners of this object, and behind the traffic that is forgotten.
    connect(m_life.get(), &SessionLifecycle::networkDisconnected, &m_voice->client(),
            &voice::VoiceClient::disconnectFromServer);
}

voice::VoiceClient &NetworkManager::voiceClient()
{
    return m_voice->client();
}

// --- the connection ---

bool NetworkManager::isBusy() const
{
    return m_life->isBusy();
}

bool NetworkManager::isResolving() const
{
    return m_life->isResolving();
}

bool NetworkManager::connectToNetwork(const QString &callsign, const QString &typeCode, const QString &selcal,
                                      bool observer)
{
    const ConnectRequest request{common::normalisedCallsign(callsign), typeCode, observer};
    const ConnectConditions conditions{isBusy(), m_own->isReadyForPilot()};
    if (const QString refusal = refusalOf(request, conditions); !refusal.isEmpty()) {
        emit notificationPosted(refusal, MessageType::Error);
        return false;
    }
    const bool underWay =
        m_life->begin({request.callsign, normalizedType(typeCode), selcal, observer}, m_fsdHost, m_fsdPort);
    letReplacedGo();
    return underWay;
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

void NetworkManager::disconnectFromNetwork()
{
    m_life->leave();
}

void NetworkManager::onNetworkError(const QString &error)
{
    m_life->onNetworkError(withoutSecretInPacket(error, m_login->secret()));
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
        m_life->completeLogin();
        break;
    case ClientQueryType::FlightPlan:
        m_traffic->onFlightPlanAnswer(pdu);
        break;
    default:
        break;
    }
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
        emit notificationPosted(tr("Network Error: %1").arg(message), MessageType::Error);
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
    releaseSimulator();
    m_replaced.append(std::exchange(m_session->simulator, std::move(simulator)));
    letReplacedGo();
    const std::weak_ptr<Simulator> installed = m_session->simulator;
    connectSimulator();
    m_own->startOver();
    if (installed.lock() != m_session->simulator)
        return; // whoever heard that has replaced it already
    m_traffic->giveToSimulator();
    emit simulatorChanged();

    QTimer::singleShot(0, this, [this, installed] {
        const std::shared_ptr<Simulator> current = installed.lock();
        if (current && current == m_session->simulator)
            current->reconnectSimulator();
    });
}

/// A replaced simulator may still be inside the signal that led to its replacement. A later turn of the event loop
/// doesn't prove that the signal has returned: a name may be looked up in a loop on top of it. So nothing is let go
/// during a look-up, and otherwise deleteLater() waits for the loop that runs now.
void NetworkManager::letReplacedGo()
{
    if (isResolving())
        return;
    struct Keeper : QObject
    {
        using QObject::QObject;
        QList<std::shared_ptr<Simulator>> kept;
    };
    auto *keeper = new Keeper(this);
    keeper->kept.swap(m_replaced);
    keeper->deleteLater();
}

void NetworkManager::releaseSimulator()
{
    m_session->clearSimulator();
    m_own->stopListening();
    m_simulatorConnections.clear();
}

void NetworkManager::connectSimulator()
{
    const Simulator *simulator = m_session->simulator.get();
    m_simulatorConnections.add({
        connect(simulator, &Simulator::requestStationInfo, this, &NetworkManager::requestControllerAtis),
        connect(simulator, &Simulator::radioMessageSent, this, &NetworkManager::sendRadioMessage),
        connect(simulator, &Simulator::privateMessageSent, this, &NetworkManager::sendPrivateMessage),
        connect(simulator, &Simulator::forceDisconnect, m_life.get(), &SessionLifecycle::forceOut),
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
    m_session->clearSimulator();
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
