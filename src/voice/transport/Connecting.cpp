#include "voice/transport/Connecting.h"

#include "ServiceEndpoints.h"
#include "common/Worker.h"
#include "voice/transport/Connection.h"
#include "voice/transport/Identity.h"

#include <QString>

#include <chrono>
#include <optional>
#include <string>
#include <utility>

namespace tarvo::voice {

namespace {

using std::chrono::milliseconds;
using Peer = std::shared_ptr<Connection>;

/// Between two looks whether the attempt is still wanted.
constexpr milliseconds glance{50};

void note(const Peer &connection, const QString &text)
{
    connection->say(report::Note{QtDebugMsg, text});
}

/// Nothing when there is no address, or once the connection has been ended: a look-up can't be called off, so it is
/// left behind with its thread.
std::optional<SocketAddress> addressOf(const Peer &connection, const QString &host, quint16 port, SocketKind kind)
{
    struct Answer
    {
        bool hasCome = false;
        std::optional<SocketAddress> address;
    };
    const auto answer = std::make_shared<Answer>();
    common::Worker worker("voice name look-up", 1);
    const bool isAsked = worker.post([=, name = host.toStdString()] {
        std::optional<SocketAddress> found = lookUp(name, port, kind);
        connection->tell([&] { *answer = {true, std::move(found)}; });
    });
    if (isAsked && connection->waitFor([&] { return answer->hasCome; }))
        return std::move(answer->address);
    worker.leave();
    return std::nullopt;
}

/// The system's error, or 0; anything once the connection has been ended.
int connectSocket(const Connection &connection, Socket &socket, const SocketAddress &address)
{
    if (const int error = socket.connectTo(address); error != 0)
        return error;
    std::optional<int> error;
    while (!error && !connection.isOver())
        error = socket.waitUntilConnected(glance);
    return error.value_or(0);
}

/// The address of the control connection; nothing when it has failed, which is then reported.
std::optional<SocketAddress> reachTcp(const Peer &connection, const ServiceEndpoints &endpoints)
{
    const QString &host = endpoints.voiceHost;
    std::optional<SocketAddress> address = addressOf(connection, host, endpoints.voiceTcpPort, SocketKind::Stream);
    if (!address) {
        connection->say(report::Failed{QStringLiteral("Failed to resolve server address %1").arg(host)});
        return std::nullopt;
    }
    const int error = connectSocket(*connection, connection->tcp(), *address);
    if (error == 0)
        return address;
    connection->say(report::Failed{
        QStringLiteral("Failed to connect to server at %1 (ip=%2): %3 (errno=%4)")
            .arg(host, QString::fromStdString(address->text), QString::fromStdString(socketErrorText(error)))
            .arg(error)});
    return std::nullopt;
}

/// What fails here shows only as silence.
void reachUdp(const Peer &connection, const ServiceEndpoints &endpoints)
{
    const auto address = addressOf(connection, endpoints.voiceHost, endpoints.voiceUdpPort, SocketKind::Datagram);
    if (address && connectSocket(*connection, connection->udp(), *address) == 0)
        note(connection,
             QStringLiteral("UDP connection established with %1").arg(QString::fromStdString(address->text)));
}

} // namespace

void reachServer(const Peer &connection, const ServiceEndpoints &endpoints)
{
    if (connection->isOver())
        return;
    const std::optional<SocketAddress> address = reachTcp(connection, endpoints);
    if (!address)
        return;
    note(connection, QStringLiteral("TCP connection established with %1").arg(QString::fromStdString(address->text)));
    reachUdp(connection, endpoints);
    if (connection->isOver()) // the token goes nowhere any more
        return;
    connection->open();
    note(connection, QStringLiteral("Authentication information sent"));
    connection->sendPacket(connection->identity().keepAlivePacket());
    connection->say(report::Established());
}

} // namespace tarvo::voice
