#pragma once

#include "common/Clock.h"
#include "fsd/LineSplitter.h"
#include "fsd/NameResolver.h"

#include <QAbstractSocket>
#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>

class QTcpSocket;

namespace tarvo::fsd {

namespace pdu {
struct ATCPosition;
struct AddATC;
struct AddPilot;
struct AuthChallenge;
struct BroadcastMessage;
struct ChangeServer;
struct ClientIdentification;
struct ClientQuery;
struct ClientQueryResponse;
struct DeleteATC;
struct DeletePilot;
struct FastPilotPosition;
struct FlightPlan;
struct KillRequest;
struct MetarResponse;
struct Mute;
struct PilotPosition;
struct Ping;
struct PlaneInfoRequest;
struct PlaneInfoResponse;
struct Pong;
struct ProtocolError;
struct RadioMessage;
struct SendFast;
struct ServerIdentification;
struct TextMessage;
struct Wallop;
} // namespace pdu

/// The TCP end of the FSD protocol: resolves, connects, cuts the stream into PDUs, raises one signal for each, and
/// writes finished lines. Answers challenges and follows server changes by itself. Main thread only.
///
/// A signal's PDU lives only for the call. A malformed line raises raiseNetworkError and the session goes on.
class FsdClient : public QObject
{
    Q_OBJECT

public:
    /// How long lines are handled before the event loop turns, in ms. A flood must not hold the window.
    static constexpr qint64 longestTurnMs = 8;

    /// `clock` must outlive it.
    explicit FsdClient(QObject *parent = nullptr, const common::Clock &clock = common::systemClock());
    ~FsdClient() override;

    /// Starts a connection; true when the socket was started. `host` is a name or an IPv4 address. A name is looked up
    /// in a nested event loop inside this call; disconnectFromServer() ends the look-up, and then this returns false
    /// without raising anything.
    bool connectToServer(const QString &host, quint16 port);
    /// Closes. Raises raiseNetworkDisconnected first, also when not connected.
    void disconnectFromServer();
    /// Writes one finished line, with its line end, as Latin-1. Does nothing when not connected or when it is empty.
    /// Ends the connection, as if the server had closed it, when megabytes wait because the server does not read.
    void sendRaw(const QString &line);
    /// True between the socket's connect and any disconnect.
    bool isConnected() const { return m_connected; }
    /// True while a name is looked up for a connection: a call of this client is then on the stack under a nested event
    /// loop, and the client must not be destroyed.
    bool isResolving() const { return m_resolver.isBusy(); }
    /// Takes bytes that came from the server, as one read, and handles lines for at most longestTurnMs. The event loop
    /// goes on with what is left, in order.
    void receive(const QByteArray &bytes);
    /// The resolved address of the current server; empty before the first connection.
    const QString &serverAddress() const { return m_serverAddress; }

signals:
    void raiseNetworkConnected();
    void raiseNetworkDisconnected();
    void sendDataError(); ///< never raised
    void raiseNetworkError(const QString &error);
    void raiseServerIdentificationReceived(const tarvo::fsd::pdu::ServerIdentification &pdu);
    void raiseClientIdentificationReceived(const tarvo::fsd::pdu::ClientIdentification &pdu);
    void raisePilotPositionReceived(const tarvo::fsd::pdu::PilotPosition &pdu);
    void raiseFastPilotPositionReceived(const tarvo::fsd::pdu::FastPilotPosition &pdu);
    void raiseATCPositionReceived(const tarvo::fsd::pdu::ATCPosition &pdu);
    void raiseAddATCReceived(const tarvo::fsd::pdu::AddATC &pdu);
    void raiseDeleteATCReceived(const tarvo::fsd::pdu::DeleteATC &pdu);
    void raiseAddPilotReceived(const tarvo::fsd::pdu::AddPilot &pdu);
    void raiseDeletePilotReceived(const tarvo::fsd::pdu::DeletePilot &pdu);
    void raiseBroadcastMessageReceived(const tarvo::fsd::pdu::BroadcastMessage &pdu);
    void raiseWallopReceived(const tarvo::fsd::pdu::Wallop &pdu);
    void raiseRadioMessageReceived(const tarvo::fsd::pdu::RadioMessage &pdu);
    void raiseTextMessageReceived(const tarvo::fsd::pdu::TextMessage &pdu);
    void raiseMetarResponseReceived(const tarvo::fsd::pdu::MetarResponse &pdu);
    void raisePlaneInfoRequestReceived(const tarvo::fsd::pdu::PlaneInfoRequest &pdu);
    void raisePlaneInfoResponseReceived(const tarvo::fsd::pdu::PlaneInfoResponse &pdu);
    void raiseFlightPlanReceived(const tarvo::fsd::pdu::FlightPlan &pdu);
    void raisePingReceived(const tarvo::fsd::pdu::Ping &pdu);
    void raisePongReceived(const tarvo::fsd::pdu::Pong &pdu);
    void raiseClientQueryReceived(const tarvo::fsd::pdu::ClientQuery &pdu);
    void raiseClientQueryResponseReceived(const tarvo::fsd::pdu::ClientQueryResponse &pdu);
    void raiseKillRequestReceived(const tarvo::fsd::pdu::KillRequest &pdu);
    void raiseProtocolErrorReceived(const tarvo::fsd::pdu::ProtocolError &pdu);
    void raiseSendFastReceived(const tarvo::fsd::pdu::SendFast &pdu);
    /// A line as it went out, and as it came in, line end included.
    void raiseRawDataSent(const QString &line);
    void raiseRawDataReceived(const QString &line);
    void raiseMuteReceived(const tarvo::fsd::pdu::Mute &pdu);

private:
    class StackGuard;
    /// An error of the socket, which waits for its turn behind the lines that came before.
    struct SocketError
    {
        QString text;         ///< empty: nobody is told
        bool isClose = false; ///< by the server
    };

    void attach();
    void endUnreadConnection();
    void onSocketConnected();
    void onSocketError(QAbstractSocket::SocketError error);
    void raiseSocketError();
    void readSocket();
    std::optional<QString> nextLine();
    void handleLines();
    void dispatch(const QString &line);
    void handle(const pdu::AuthChallenge &challenge);
    void handle(const pdu::ChangeServer &change);
    void connectToNewServer(QTcpSocket *socket, const QString &address);
    void onNewServerConnected(QTcpSocket *socket);
    void onNewServerError(QTcpSocket *socket);
    void abandonServerChange();
    void forgetConnection();
    void dropConnection();
    void retire(QTcpSocket *socket);

    const common::Clock &m_clock;
    QTcpSocket *m_socket = nullptr; ///< child; a fresh one for each connection, and on a server change
    bool m_connected = false;
    LineSplitter m_splitter;                  ///< lines that wait for their turn, and the text after the last
    QTimer m_nextTurn{this};                  ///< of 0 ms: sockets and windows get their turn in between
    std::optional<SocketError> m_socketError; ///< behind the lines that wait
    QString m_serverAddress;                  ///< resolved
    quint16 m_serverPort = 0;
    bool m_changingServer = false;     ///< socket errors are silent meanwhile
    QTcpSocket *m_newSocket = nullptr; ///< child; connecting to the next server
    NameResolver m_resolver;
    int m_session = 0;             ///< counts starts and ends of connections; whoever raises a signal compares it
    int m_reactions = 0;           ///< socket reactions on the stack
    QList<QTcpSocket *> m_retired; ///< to be deleted once no socket's own call can be on the stack
};

} // namespace tarvo::fsd
