#include "fsd/FsdClient.h"

#include "fsd/pdu/AnyPdu.h"
#include "fsd/pdu/AuthResponse.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PDUFormatException.h"

#include <QDebug>
#include <QMetaEnum>
#include <QTcpSocket>

#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

namespace tarvo::fsd {

namespace {

/// Bytes that a socket reads ahead, and characters of lines that may wait here. What comes beyond stays with the
/// server.
constexpr qint64 readBufferSize = 1 << 20;

/// Bytes that may wait to be written. Far above what a live link ever holds back; without a bound a server that asks
/// and never reads the answers could fill the memory.
constexpr qint64 maximumUnsent = 4 << 20;

template <class Pdu>
using Signal = void (FsdClient::*)(const Pdu &);

/// The signal of each PDU class, found by the class.
constexpr std::tuple signalTable{
    &FsdClient::raisePilotPositionReceived,
    &FsdClient::raiseFastPilotPositionReceived,
    &FsdClient::raiseATCPositionReceived,
    &FsdClient::raiseServerIdentificationReceived,
    &FsdClient::raiseClientIdentificationReceived,
    &FsdClient::raiseAddATCReceived,
    &FsdClient::raiseDeleteATCReceived,
    &FsdClient::raiseAddPilotReceived,
    &FsdClient::raiseDeletePilotReceived,
    &FsdClient::raiseBroadcastMessageReceived,
    &FsdClient::raiseWallopReceived,
    &FsdClient::raiseRadioMessageReceived,
    &FsdClient::raiseTextMessageReceived,
    &FsdClient::raiseMetarResponseReceived,
    &FsdClient::raisePlaneInfoRequestReceived,
    &FsdClient::raisePlaneInfoResponseReceived,
    &FsdClient::raiseFlightPlanReceived,
    &FsdClient::raisePingReceived,
    &FsdClient::raisePongReceived,
    &FsdClient::raiseClientQueryReceived,
    &FsdClient::raiseClientQueryResponseReceived,
    &FsdClient::raiseKillRequestReceived,
    &FsdClient::raiseProtocolErrorReceived,
    &FsdClient::raiseSendFastReceived,
    &FsdClient::raiseMuteReceived,
};

/// "RemoteHostClosedError: The remote host closed the connection"
QString describe(QAbstractSocket::SocketError error, const QString &text)
{
    const QString key =
        QString::fromLatin1(QMetaEnum::fromType<QAbstractSocket::SocketError>().valueToKey(static_cast<int>(error)));
    return text.isEmpty() ? key : key + QLatin1StringView(": ") + text;
}

/// Closes for good. close() would let a connecting socket connect first.
void finish(QTcpSocket *socket)
{
    if (socket->state() == QAbstractSocket::HostLookupState || socket->state() == QAbstractSocket::ConnectingState)
        socket->abort();
    else
        socket->close();
}

/// A second small line must not wait until the server has confirmed the first. Takes effect on a connected socket only.
void sendAtOnce(QTcpSocket &socket)
{
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
}

} // namespace

/// Stands in every reaction to a socket. A retired socket may be one whose call is still on the stack, perhaps under a
/// nested event loop, so that it is deleted only when the last reaction has ended.
class FsdClient::StackGuard
{
public:
    explicit StackGuard(FsdClient &client) : m_client(client) { ++m_client.m_reactions; }
    ~StackGuard()
    {
        if (--m_client.m_reactions > 0)
            return;
        for (QTcpSocket *socket : std::as_const(m_client.m_retired))
            socket->deleteLater();
        m_client.m_retired.clear();
    }
    Q_DISABLE_COPY_MOVE(StackGuard)

private:
    FsdClient &m_client;
};

FsdClient::FsdClient(QObject *parent, const common::Clock &clock)
    : QObject(parent), m_clock(clock), m_socket(new QTcpSocket(this)), m_resolver(this)
{
    m_nextTurn.setSingleShot(true);
    connect(&m_nextTurn, &QTimer::timeout, this, &FsdClient::handleLines);
    attach();
}

FsdClient::~FsdClient()
{
    // Closing in the base destructor would reach for members that are gone by then.
    for (QTcpSocket *socket : findChildren<QTcpSocket *>(Qt::FindDirectChildrenOnly))
        socket->disconnect();
}

void FsdClient::attach()
{
    m_socket->setReadBufferSize(readBufferSize);
    connect(m_socket, &QTcpSocket::readyRead, this, &FsdClient::readSocket);
    connect(m_socket, &QTcpSocket::connected, this, &FsdClient::onSocketConnected);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &FsdClient::onSocketError);
}

bool FsdClient::connectToServer(const QString &host, quint16 port)
{
    abandonServerChange(); // its look-up ends with this one
    const std::optional<QString> address = m_resolver.resolve(host);
    if (!address)
        return false;
    if (address->isEmpty()) {
        emit raiseNetworkError(
            QStringLiteral("Network server address returned null, possibly due to a failed DNS lookup."));
        return false;
    }

    // A fresh socket each time: this may run inside a signal of the old one. When that signal returns, Qt would close a
    // connection that was started on the same socket.
    forgetConnection();
    retire(std::exchange(m_socket, new QTcpSocket(this)));
    attach();
    m_serverAddress = *address;
    m_serverPort = port;
    m_socket->connectToHost(m_serverAddress, port, QIODevice::ReadWrite, QAbstractSocket::AnyIPProtocol);
    return true;
}

void FsdClient::disconnectFromServer()
{
    m_resolver.abort();
    dropConnection();
}

void FsdClient::sendRaw(const QString &line)
{
    if (!m_connected || line.isEmpty())
        return;
    // An error other than the server's close leaves the connected flag, and a socket that nothing can be written to.
    if (m_socket->state() != QAbstractSocket::ConnectedState)
        return;
    if (m_socket->bytesToWrite() > maximumUnsent) {
        endUnreadConnection();
        return;
    }
    const QByteArray bytes = line.toLatin1();
    const int session = m_session;
    emit raiseRawDataSent(QString::fromUtf8(bytes)); // Latin-1 read as UTF-8: kept on purpose
    if (session != m_session)
        return;
    m_socket->write(bytes);
    m_socket->flush(); // a fast position leaves at once
}

/// The server takes nothing any more: the same as if it had closed.
void FsdClient::endUnreadConnection()
{
    qWarning() << "FSD connection ended, the server does not read:" << m_socket->bytesToWrite() << "bytes wait";
    m_socket->abort();    // closing would wait for the bytes to leave
    if (m_changingServer) // the end of the old server is silent
        return;
    const int session = m_session;
    emit raiseNetworkError(QStringLiteral("The server does not read what it is sent."));
    if (session == m_session) // not when a receiver has disconnected or connected anew
        dropConnection();
}

void FsdClient::onSocketConnected()
{
    const StackGuard guard(*this);
    sendAtOnce(*m_socket);
    m_connected = true;
    emit raiseNetworkConnected();
}

void FsdClient::onSocketError(QAbstractSocket::SocketError error)
{
    m_socketError =
        SocketError{describe(error, m_socket->errorString()), error == QAbstractSocket::RemoteHostClosedError};
    if (!m_nextTurn.isActive())
        raiseSocketError();
}

void FsdClient::raiseSocketError()
{
    const std::optional<SocketError> error = std::exchange(m_socketError, std::nullopt);
    if (!error || m_changingServer)
        return;
    const StackGuard guard(*this);
    const int session = m_session;
    if (!error->text.isEmpty())
        emit raiseNetworkError(error->text);
    if (error->isClose && session == m_session)
        dropConnection();
}

void FsdClient::readSocket()
{
    if (m_socket->bytesAvailable() > 0 && m_splitter.waiting() < readBufferSize)
        receive(m_socket->readAll());
    else
        handleLines();
}

void FsdClient::receive(const QByteArray &bytes)
{
    m_splitter.feed(QString::fromLatin1(bytes));
    handleLines();
}

/// Looks into the socket once the lines are handled: it does not announce what came in under its own readyRead.
std::optional<QString> FsdClient::nextLine()
{
    std::optional<QString> line = m_splitter.take();
    while (!line && m_socket->bytesAvailable() > 0) {
        m_splitter.feed(QString::fromLatin1(m_socket->readAll()));
        line = m_splitter.take();
    }
    return line;
}

/// May be on the stack more than once, under a receiver's event loop. Each line is taken once, in order; a disconnect
/// empties the queue.
void FsdClient::handleLines()
{
    const StackGuard guard(*this);
    const qint64 start = m_clock.steadyMs();
    while (const std::optional<QString> line = nextLine()) {
        dispatch(*line);
        if (m_clock.steadyMs() - start >= longestTurnMs) {
            m_nextTurn.start();
            return;
        }
    }
    m_nextTurn.stop();
    raiseSocketError();
}

void FsdClient::dispatch(const QString &line)
{
    if (line.isEmpty())
        return;
    const int session = m_session;
    emit raiseRawDataReceived(line + QLatin1StringView("\r\n"));
    if (session != m_session)
        return;

    std::optional<AnyPdu> parsed;
    try {
        parsed = parseLine(line);
    } catch (const PDUFormatException &exception) {
        emit raiseNetworkError(QStringLiteral("%1 (Raw packet: %2)").arg(exception.error(), exception.rawMessage()));
        return;
    }
    std::visit(
        [this]<class Pdu>(const Pdu &pdu) {
            if constexpr (std::is_same_v<Pdu, pdu::AuthChallenge> || std::is_same_v<Pdu, pdu::ChangeServer>)
                handle(pdu);
            else
                (this->*std::get<Signal<Pdu>>(signalTable))(pdu); // emits
        },
        *parsed);
}

void FsdClient::handle(const pdu::AuthChallenge &challenge)
{
    // The answer is the challenge itself; no key is involved.
    sendRaw(toLine(pdu::AuthResponse(challenge.To, challenge.From, challenge.challenge)));
}

void FsdClient::handle(const pdu::ChangeServer &change)
{
    if (m_resolver.isBusy()) // the pilot is about to leave this server for another
        return;
    abandonServerChange(); // a second change overtakes the first
    auto *socket = new QTcpSocket(this);
    m_newSocket = socket;
    m_changingServer = true;
    // The context is the socket, so that these two outlive the disconnection of the client from it, and act on later
    // errors of the socket too.
    connect(socket, &QTcpSocket::connected, socket, [this, socket] { onNewServerConnected(socket); });
    connect(socket, &QTcpSocket::errorOccurred, socket, [this, socket] { onNewServerError(socket); });
    // Lines go on being handled meanwhile; nothing waits.
    m_resolver.lookUp(change.newServer, [this, socket, name = change.newServer](const QString &address) {
        if (m_newSocket != socket) // overtaken or disconnected meanwhile
            return;
        if (address.isEmpty())
            qWarning().noquote() << "Server change failed, no address found for" << name;
        connectToNewServer(socket, address);
    });
}

void FsdClient::connectToNewServer(QTcpSocket *socket, const QString &address)
{
    if (address.isEmpty()) {
        onNewServerError(socket);
        return;
    }
    socket->connectToHost(address, m_serverPort, QIODevice::ReadWrite, QAbstractSocket::AnyIPProtocol);
    m_splitter.forgetPartial();
}

/// The session goes on, over the new socket. Lines of the old server that still wait are handled before those of the
/// new one.
void FsdClient::onNewServerConnected(QTcpSocket *socket)
{
    const StackGuard guard(*this);
    readSocket(); // what is left on the old socket
    if (m_newSocket != socket)
        return;
    m_splitter.feed(QString::fromLatin1(m_socket->readAll()));
    m_splitter.forgetPartial(); // a half line of the old server must not lead the new one's first
    socket->disconnect(this);   // leaves the two closures
    sendAtOnce(*socket);
    m_newSocket = nullptr;
    retire(std::exchange(m_socket, socket));
    m_changingServer = false;
    m_socketError.reset();                // the old socket's
    m_serverAddress = socket->peerName(); // the address it was told
    attach();
    readSocket();
}

/// The old connection goes on if it still stands. Runs also for a later error of a socket that was changed to.
void FsdClient::onNewServerError(QTcpSocket *socket)
{
    if (m_newSocket && m_newSocket != socket) // the next change is under way, and silences this one
        return;
    const StackGuard guard(*this);
    abandonServerChange();
    if (m_socket->state() == QAbstractSocket::ConnectedState)
        return;
    m_socketError = SocketError{.text = {}, .isClose = true}; // silent, and behind the lines that wait
    if (!m_nextTurn.isActive())
        raiseSocketError();
}

void FsdClient::abandonServerChange()
{
    m_changingServer = false;
    if (QTcpSocket *socket = std::exchange(m_newSocket, nullptr))
        retire(socket);
}

/// Nothing of the connection is handled any more, not what has been read of it either.
void FsdClient::forgetConnection()
{
    ++m_session;
    abandonServerChange();
    m_connected = false;
    m_splitter.reset();
    m_nextTurn.stop();
    m_socketError.reset();
}

void FsdClient::dropConnection()
{
    forgetConnection();
    const int session = m_session;
    emit raiseNetworkDisconnected();
    if (session == m_session) // not when a receiver has connected anew
        finish(m_socket);
}

/// Takes a socket out of use.
void FsdClient::retire(QTcpSocket *socket)
{
    socket->disconnect(); // the client and the closures of a server change
    finish(socket);
    if (m_reactions > 0)
        m_retired.append(socket);
    else
        socket->deleteLater();
}

} // namespace tarvo::fsd
