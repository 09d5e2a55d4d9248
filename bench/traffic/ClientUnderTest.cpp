#include "traffic/ClientUnderTest.h"

#include "AppConfig.h"
#include "Logging.h"
#include "ServiceEndpoints.h"
#include "common/Clock.h"
#include "manager/AircraftManager.h"
#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "manager/UserAircraftManager.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "simulator/xplane/XPlaneAdapter.h"
#include "traffic/Pages.h"
#include "traffic/Scheduling.h"

#include <QCoreApplication>
#include <QDir>
#include <QTimer>

#include <memory>

namespace tarvo::bench {

namespace {

constexpr int longestStartMs = 30'000;

ServiceEndpoints endpointsOf(const ClientArguments &arguments)
{
    ServiceEndpoints endpoints;
    endpoints.fsdHost = QStringLiteral("127.0.0.1");
    endpoints.fsdPort = arguments.fsdPort;
    endpoints.localPluginUrl = arguments.pluginUrl;
    return endpoints;
}

/// One login session, as the entry function composes it, with all that the main window holds but the window itself.
class Client
{
public:
    Client(const ClientArguments &arguments, const MakeSimulator &makeSimulator)
        : m_endpoints(endpointsOf(arguments)),
          m_config(arguments.folder),
          m_api(m_config, m_endpoints),
          m_icao(m_config)
    {
        m_config.set(config::xplaneUdpPort, arguments.xplanePort);
        m_config.set(config::sessionUsername, QStringLiteral("1001"));
        m_config.set(config::sessionPassword, QStringLiteral("practice"));
        m_config.set(config::authVatsim, false);
        m_icao.ensureLoaded();
        m_network = std::make_shared<manager::NetworkManager>(m_config, m_api, m_icao, m_endpoints);
        m_aircraft = std::make_shared<manager::AircraftManager>(m_network);
        m_userAircraft = std::make_shared<manager::UserAircraftManager>(m_network);
        m_controllers = std::make_shared<manager::ControllerManager>(m_network);
        m_pages = std::make_unique<Pages>(m_network, m_controllers, m_icao);
        m_adapter = makeSimulator(m_config, m_icao);
        connectWhenLive();
        m_network->setSimulator(m_adapter);
    }

    ~Client()
    {
        m_pages.reset();
        m_controllers.reset();
        m_userAircraft.reset();
        m_aircraft.reset();
        m_network.reset();
    }
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;

private:
    void connectWhenLive()
    {
        using manager::NetworkManager;
        using simulator::Simulator;
        QObject::connect(m_adapter.get(), &Simulator::simConnectionStateChanged, m_adapter.get(),
                         [this](bool on) { m_simulatorConnected = on; });
        QObject::connect(m_adapter.get(), &Simulator::userAircraftDataChanged, &m_context, [this] {
            if (m_simulatorConnected && !m_asked)
                QTimer::singleShot(0, &m_context, [this] { ask(); });
        });
        QObject::connect(m_network.get(), &NetworkManager::networkDisconnected, &m_context,
                         [] { QCoreApplication::exit(0); });
        QTimer::singleShot(longestStartMs, &m_context, [this] {
            if (!m_asked)
                QCoreApplication::exit(1);
        });
    }

    void ask()
    {
        if (!m_asked)
            m_asked = m_network->connectToNetwork(QStringLiteral("AB1"), QStringLiteral("B738"), QStringLiteral("ABCD"),
                                                  false);
    }

    ServiceEndpoints m_endpoints;
    AppConfig m_config;
    network::ApiService m_api;
    network::SwiftAircraftIcaoService m_icao;
    std::shared_ptr<manager::NetworkManager> m_network;
    std::shared_ptr<manager::AircraftManager> m_aircraft;
    std::shared_ptr<manager::UserAircraftManager> m_userAircraft;
    std::shared_ptr<manager::ControllerManager> m_controllers;
    std::unique_ptr<Pages> m_pages;
    std::shared_ptr<simulator::Simulator> m_adapter;
    QObject m_context;
    bool m_simulatorConnected = false;
    bool m_asked = false;
};

} // namespace

int runClient(const ClientArguments &arguments)
{
    return runClient(arguments, [&arguments](AppConfig &config, const network::SwiftAircraftIcaoService &) {
        return std::make_shared<simulator::xplane::XPlaneAdapter>(config, endpointsOf(arguments));
    });
}

int runClient(const ClientArguments &arguments, const MakeSimulator &makeSimulator)
{
    logging::installHandler();
    logging::openLogFile(QDir(arguments.folder).filePath(QStringLiteral("logs/client.log")));
    if (arguments.ordinaryThreads)
        startOrdinaryMessageThreads();
    const Client client(arguments, makeSimulator);
    return QCoreApplication::exec();
}

} // namespace tarvo::bench
