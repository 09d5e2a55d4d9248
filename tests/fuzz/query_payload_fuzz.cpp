// Queries, their answers and whatever else comes on a connection, through everybody that reads them: the session, the
// aircraft and the controllers. Each line of the input is one line of the server. A simulator is there, and the session
// is connected to a server that looks at each line that it gets: questions and answers leave as they do in a flight.
#include "AppConfig.h"
#include "ServiceEndpoints.h"
#include "common/Callsign.h"
#include "fsd/FsdClient.h"
#include "manager/AircraftManager.h"
#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "manager/RemoteAircraftTable.h"
#include "manager/UserAircraftManager.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/FakeSimulator.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

using namespace tarvo;

namespace {

constexpr int longestMs = 30'000;

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

/// Takes one connection, and reads what is said on it.
class Server
{
public:
    Server() { require(m_server.listen(QHostAddress::LocalHost)); }

    quint16 port() const { return m_server.serverPort(); }
    bool isConnected() const { return m_socket && m_socket->state() == QAbstractSocket::ConnectedState; }

    void hangUp()
    {
        m_socket->abort();
        m_received.clear();
    }
    /// Whoever has come since takes the place of the earlier one.
    void accept()
    {
        if (QTcpSocket *socket = m_server.nextPendingConnection())
            m_socket.reset(socket);
    }

    /// How many lines have come. Whatever was asked, nobody can make the client write two lines in the place of one.
    qsizetype drain()
    {
        while (m_socket && (m_socket->bytesAvailable() > 0 || m_socket->waitForReadyRead(0)))
            m_received += m_socket->readAll();
        qsizetype lines = 0;
        qsizetype start = 0;
        for (qsizetype end = m_received.indexOf("\r\n"); end >= 0; end = m_received.indexOf("\r\n", start)) {
            const QByteArrayView line = QByteArrayView(m_received).sliced(start, end - start);
            require(!line.empty() && !line.contains('\r') && !line.contains('\n'));
            start = end + 2;
            ++lines;
        }
        m_received.remove(0, start);
        return lines;
    }

private:
    QTcpServer m_server;
    std::unique_ptr<QTcpSocket> m_socket;
    QByteArray m_received;
};

ServiceEndpoints endpointsOf(const Server &server)
{
    ServiceEndpoints endpoints;
    endpoints.fsdHost = QStringLiteral("127.0.0.1");
    endpoints.fsdPort = server.port();
    return endpoints;
}

/// One login session, as the program composes it.
class World
{
public:
    World() : m_config(folderWithoutLogs(m_root)), m_api(m_config), m_icao(m_config)
    {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        m_network = std::make_shared<manager::NetworkManager>(m_config, m_api, m_icao, endpointsOf(m_server));
        m_aircraft = std::make_unique<manager::AircraftManager>(m_network);
        m_own = std::make_unique<manager::UserAircraftManager>(m_network);
        m_controllers = std::make_unique<manager::ControllerManager>(m_network);
        m_network->setSimulator(m_simulator);
        m_client = m_network->findChild<fsd::FsdClient *>();
        require(m_client);
        QObject::connect(m_network.get(), &manager::NetworkManager::networkConnected, m_client, [this] { ++m_logins; });
    }

    /// The login is through; two aircraft, and a station that was asked for its ATIS.
    void begin()
    {
        connect();
        m_logins = 0;
        m_client->receive("$CRSERVER:AB1:IP:127.0.0.1\r\n"
                          "@N:TST1:2000:1:40.0:116.0:3000:250:4261561312:100\r\n"
                          "@N:TST2:2000:1:40.0:116.0:3000:0:4261561312:100\r\n"
                          "%ZBAA_TWR:18500:4:100:5:40.0:116.0:0\r\n");
        m_network->requestControllerAtis(QStringLiteral("ZBAA_TWR"));
        require(m_logins == 1);
        require(m_server.drain() > 0);
    }

    void receive(const QByteArray &line)
    {
        m_client->receive(line + "\r\n");
        m_server.drain();
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
        m_server.hangUp();
        waitUntil([this] { return !m_network->isBusy(); });
        require(m_network->remoteAircraft().isEmpty());
        require(m_aircraft->aircraft().isEmpty());
        require(m_controllers->controllers().isEmpty());
        m_simulator->calls.clear();
        m_simulator->told.clear();
    }

private:
    void connect()
    {
        model::UserAircraftData live;
        live.latitude = 40 + 1e-6 * ++m_connections; // each is another than the one before
        emit m_simulator->simConnectionStateChanged(true);
        emit m_simulator->userAircraftDataChanged(live);
        require(
            m_network->connectToNetwork(QStringLiteral("AB1"), QStringLiteral("B738"), QStringLiteral("EF-GH"), false));
        waitUntil([this] {
            m_server.accept();
            return m_client->isConnected() && m_server.isConnected();
        });
    }
    template <class Condition>
    static void waitUntil(const Condition &holds)
    {
        const QDeadlineTimer deadline(longestMs);
        while (!holds()) {
            require(!deadline.hasExpired());
            QCoreApplication::processEvents();
        }
    }

    Server m_server;
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
    int m_connections = 0;
    int m_logins = 0; ///< of the current input
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
