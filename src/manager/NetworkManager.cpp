#include "manager/NetworkManager.h"

#include "AppConfig.h"
#include "manager/PilotName.h"
#include "network/ApiService.h"

#include <QDir>

namespace tarvo::manager {

namespace {

constexpr int dataWatchIntervalMs = 500;

QString networkLogFolder(const AppConfig &config)
{
    return QDir(config.logsFolder()).filePath(QStringLiteral("network"));
}

} // namespace

NetworkManager::NetworkManager(AppConfig &config, network::ApiService &api, network::SwiftAircraftIcaoService &icao,
                               const ServiceEndpoints &endpoints, const common::Clock &clock, QObject *parent)
    : QObject(parent),
      m_config(config),
      m_api(api),
      m_icao(icao),
      m_fsdHost(endpoints.fsdHost),
      m_fsdPort(endpoints.fsdPort),
      m_clock(clock),
      m_fsd(this),
      m_dataWatchdog(this),
      m_reporter([this] { return ownPosition(); }, this),
      m_types(icao),
      m_log(networkLogFolder(config), clock)
{
    m_dataWatchdog.setObjectName(QStringLiteral("dataWatchdog"));
    m_dataWatchdog.setInterval(dataWatchIntervalMs);
    connect(&m_dataWatchdog, &QTimer::timeout, this, &NetworkManager::onWatchdog);
    connect(&m_reporter, &PositionReporter::lineReady, this, &NetworkManager::send);
    connectFsdClient();
}

NetworkManager::~NetworkManager()
{
    // What the client raises while it closes must not reach an object that is half gone.
    disconnect(&m_fsd, nullptr, this, nullptr);
}

void NetworkManager::connectFsdClient()
{
    using fsd::FsdClient;
    connect(&m_fsd, &FsdClient::raiseNetworkError, this, &NetworkManager::onNetworkError);
    connect(&m_fsd, &FsdClient::raiseProtocolErrorReceived, this, &NetworkManager::onProtocolError);
    connect(&m_fsd, &FsdClient::raiseNetworkConnected, this, &NetworkManager::onNetworkConnected);
    connect(&m_fsd, &FsdClient::raiseNetworkDisconnected, this, &NetworkManager::onNetworkDisconnected);
    connect(&m_fsd, &FsdClient::raiseServerIdentificationReceived, this, &NetworkManager::onServerIdentification);
    connect(&m_fsd, &FsdClient::raiseAddATCReceived, this, &NetworkManager::onAddATC);
    connect(&m_fsd, &FsdClient::raiseAddPilotReceived, this, &NetworkManager::onAddPilot);
    connect(&m_fsd, &FsdClient::raiseClientQueryReceived, this, &NetworkManager::onClientQuery);
    connect(&m_fsd, &FsdClient::raiseClientQueryResponseReceived, this, &NetworkManager::onClientQueryResponse);
    connect(&m_fsd, &FsdClient::raisePilotPositionReceived, this, &NetworkManager::onPilotPosition);
    connect(&m_fsd, &FsdClient::raiseFastPilotPositionReceived, this, &NetworkManager::onFastPilotPosition);
    connect(&m_fsd, &FsdClient::raiseATCPositionReceived, this, &NetworkManager::onATCPosition);
    connect(&m_fsd, &FsdClient::raiseDeletePilotReceived, this, &NetworkManager::onDeletePilot);
    connect(&m_fsd, &FsdClient::raiseDeleteATCReceived, this, &NetworkManager::onDeleteATC);
    connect(&m_fsd, &FsdClient::raisePingReceived, this, &NetworkManager::onPing);
    connect(&m_fsd, &FsdClient::raiseTextMessageReceived, this, &NetworkManager::onTextMessage);
    connect(&m_fsd, &FsdClient::raiseRadioMessageReceived, this, &NetworkManager::onRadioMessage);
    connect(&m_fsd, &FsdClient::raiseBroadcastMessageReceived, this, &NetworkManager::onBroadcastMessage);
    connect(&m_fsd, &FsdClient::raisePlaneInfoRequestReceived, this, &NetworkManager::onPlaneInfoRequest);
    connect(&m_fsd, &FsdClient::raisePlaneInfoResponseReceived, this, &NetworkManager::onPlaneInfoResponse);
    connect(&m_fsd, &FsdClient::raiseFlightPlanReceived, this, &NetworkManager::onFlightPlan);
    connect(&m_fsd, &FsdClient::raiseKillRequestReceived, this, &NetworkManager::onKillRequest);
    connect(&m_fsd, &FsdClient::raiseSendFastReceived, this, &NetworkManager::onSendFast);
    connect(&m_fsd, &FsdClient::raiseRawDataSent, this, &NetworkManager::onRawDataSent);
    connect(&m_fsd, &FsdClient::raiseRawDataReceived, this, &NetworkManager::onRawDataReceived);
    connect(&m_fsd, &FsdClient::raiseMuteReceived, this, &NetworkManager::onMute);
}

QString NetworkManager::username() const
{
    return signInName(m_config);
}

QString NetworkManager::password() const
{
    // What was typed for this login session goes before what is stored.
    const QString typed = m_config.get(config::sessionPassword);
    return typed.isEmpty() ? m_config.get(config::authPassword) : typed;
}

QString NetworkManager::realName() const
{
    return pilotName(m_config, m_api);
}

QString NetworkManager::realNameWithAirport() const
{
    return nameWithAirport(realName(), homeAirport(m_config.get(config::profileHomeAirport)));
}

void NetworkManager::notify(const QString &message, common::MessageType type)
{
    emit notificationPosted(message, type);
}

} // namespace tarvo::manager
