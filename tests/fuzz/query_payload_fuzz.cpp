// Queries, their answers and whatever else comes on a connection, through everybody that reads them: the session, the
// aircraft and the controllers. Each line of the input is one line of the server; a simulator is there, the socket
// isn't.
#include "AppConfig.h"
#include "fsd/FsdClient.h"
#include "common/Callsign.h"
#include "manager/AircraftManager.h"
#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "manager/RemoteAircraftTable.h"
#include "manager/UserAircraftManager.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/FakeSimulator.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

using namespace tarvo;

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// A folder in which no log can be made: it would grow with every input.
QString folderWithoutLogs(const QTemporaryDir &folder)
{
    QFile file(folder.filePath(QStringLiteral("logs")));
    require(file.open(QIODevice::WriteOnly));
    return folder.path();
}

/// One login session, as the program composes it.
class World
{
public:
    World() : m_config(folderWithoutLogs(m_root)), m_api(m_config), m_icao(m_config)
    {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        m_network = std::make_shared<manager::NetworkManager>(m_config, m_api, m_icao);
        m_aircraft = std::make_unique<manager::AircraftManager>(m_network);
        m_own = std::make_unique<manager::UserAircraftManager>(m_network);
        m_controllers = std::make_unique<manager::ControllerManager>(m_network);
        m_network->setSimulator(m_simulator);
        m_client = m_network->findChild<fsd::FsdClient *>();
        require(m_client);
    }

    /// Two aircraft and a station that was asked for its ATIS.
    void begin()
    {
        m_client->receive("@N:TST1:2000:1:40.0:116.0:3000:250:4261561312:100\r\n"
                          "@N:TST2:2000:1:40.0:116.0:3000:0:4261561312:100\r\n"
                          "%ZBAA_TWR:18500:4:100:5:40.0:116.0:0\r\n");
        m_network->requestControllerAtis(QStringLiteral("ZBAA_TWR"));
    }

    void receive(const QByteArray &line)
    {
        m_client->receive(line + "\r\n");
        emit m_simulator->aircraftAddedToSim(QStringLiteral("TST1"));
    }

    void check(qsizetype lines) const
    {
        const QList<model::RemoteAircraft> known = m_network->remoteAircraft();
        require(known.size() <= lines + 2);
        for (const model::RemoteAircraft &aircraft : known) {
            require(aircraft.callsign == common::normalisedCallsign(aircraft.callsign));
            require(!aircraft.callsign.isEmpty());
        }
        require(m_controllers->controllers().size() <= lines + 1);
    }

    void end()
    {
        m_client->disconnectFromServer();
        require(m_network->remoteAircraft().isEmpty());
        require(m_aircraft->aircraft().isEmpty());
        require(m_controllers->controllers().isEmpty());
        m_simulator->calls.clear();
        m_simulator->told.clear();
        QCoreApplication::processEvents();
    }

private:
    QTemporaryDir m_root;
    AppConfig m_config;
    network::ApiService m_api;
    network::SwiftAircraftIcaoService m_icao;
    std::shared_ptr<test::FakeSimulator> m_simulator = std::make_shared<test::FakeSimulator>();
    std::shared_ptr<manager::NetworkManager> m_network;
    std::unique_ptr<manager::AircraftManager> m_aircraft;
    std::unique_ptr<manager::UserAircraftManager> m_own;
    std::unique_ptr<manager::ControllerManager> m_controllers;
    fsd::FsdClient *m_client = nullptr;
};

QCoreApplication &application()
{
    static int argc = 1;
    static char name[] = "query_payload";
    static char *argv[] = {name, nullptr};
    static QCoreApplication instance(argc, argv);
    return instance;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QCoreApplication &toolkit = application();
    (void)toolkit;
    static World world;
    const QByteArray input(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QList<QByteArray> lines = input.split('\n');
    world.begin();
    for (const QByteArray &line : lines) {
        if (!line.startsWith("$XX")) // would look a name up
            world.receive(line);
    }
    world.check(lines.size());
    world.end();
    return 0;
}
