#include "practice/fsd/FsdServer.h"

#include "common/Callsign.h"
#include "fsd/pdu/ChangeServer.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/KillRequest.h"
#include "fsd/pdu/ProtocolError.h"
#include "fsd/pdu/SendFast.h"
#include "fsd/pdu/TextMessage.h"
#include "practice/account/AccountBook.h"
#include "practice/account/TokenAuthority.h"
#include "practice/fsd/FsdDispatcher.h"
#include "practice/fsd/FsdErrors.h"
#include "practice/fsd/FsdResident.h"
#include "practice/fsd/FsdSession.h"

#include <QTcpServer>

namespace tarvo::practice {

using fsd::toLine;

namespace {
constexpr int keepAliveMs = 200;
} // namespace

FsdServer::FsdServer(const AccountBook &accounts, const TokenAuthority &tokens, FsdSettings settings,
                     const common::Clock &clock, QObject *parent)
    : QObject(parent),
      m_settings(std::move(settings)),
      m_clock(clock),
      m_keepAlive(m_settings, clock),
      m_server(std::make_unique<QTcpServer>()),
      m_relay(m_roster, m_settings),
      m_dispatcher(std::make_unique<FsdDispatcher>(accounts, tokens, m_roster, m_keepAlive, m_settings))
{
    connect(m_server.get(), &QTcpServer::newConnection, this, &FsdServer::acceptConnections);
    connect(m_dispatcher.get(), &FsdDispatcher::loggedIn, this,
            [this](FsdSession &session) { emit clientLoggedIn(session.name(), session.identity->observer); });
    connect(&m_timer, &QTimer::timeout, this, &FsdServer::keepAlive);
}

FsdServer::~FsdServer()
{
    close();
}

bool FsdServer::listen(const QHostAddress &address, quint16 port)
{
    if (!m_server->listen(address, port))
        return false;
    m_timer.start(keepAliveMs);
    return true;
}

void FsdServer::close()
{
    m_server->close();
    m_timer.stop();
    const QList<FsdSession *> sessions = m_roster.all();
    for (FsdSession *session : sessions) {
        m_roster.remove(session);
        session->disconnect(this);
        session->finish();
        session->deleteLater();
    }
}

quint16 FsdServer::port() const
{
    return m_server->serverPort();
}

QHostAddress FsdServer::address() const
{
    return m_server->serverAddress();
}

QString FsdServer::errorString() const
{
    return m_server->errorString();
}

QStringList FsdServer::callsigns() const
{
    QStringList list;
    for (const FsdSession *session : m_roster.all()) {
        if (session->isOpen() && session->loggedIn())
            list.append(session->identity->callsign);
    }
    return list;
}

QString FsdServer::callsignOf(qint64 cid) const
{
    QString callsign;
    for (const FsdSession *session : m_roster.all()) {
        if (session->isOpen() && session->loggedIn() && session->identity->cid == QString::number(cid))
            callsign = session->identity->callsign;
    }
    return callsign;
}

int FsdServer::connectionCount() const
{
    return static_cast<int>(m_roster.all().size());
}

void FsdServer::acceptConnections()
{
    while (QTcpSocket *socket = m_server->nextPendingConnection()) {
        auto session = std::make_unique<FsdSession>(socket, m_settings, m_clock, this);
        attach(session.release()); // a child of this; remove() ends it
    }
}

void FsdServer::attach(FsdSession *session)
{
    connect(session, &FsdSession::lineSent, this,
            [this, session](const QString &line) { emit lineSent(session->name(), line); });
    connect(session, &FsdSession::lineReceived, this, [this, session](const QString &line) {
        if (!m_roster.isForCrowd(line))
            emit lineReceived(session->name(), line);
        if (session->isOpen())
            m_dispatcher->handle(*session, line);
    });
    connect(session, &FsdSession::refused, this,
            [this, session](const QString &reason) { emit clientRefused(session->name(), reason); });
    connect(session, &FsdSession::ended, this, [this, session] { remove(session); });
    m_roster.add(session);
    emit clientConnected(session->name());
    if (connectionCount() > 2 * m_settings.maxClients) // even those being sent away are too many
        session->drop();
    else if (connectionCount() > m_settings.maxClients)
        session->refuse(FsdError::ServerFull, {}, QStringLiteral("Server full"));
    else
        m_dispatcher->greet(*session);
}

void FsdServer::remove(FsdSession *session)
{
    m_roster.remove(session);
    session->disconnect(this);
    session->deleteLater();
    m_dispatcher->leave(*session);
    emit clientLeft(session->name());
}

void FsdServer::keepAlive()
{
    const QList<FsdSession *> sessions = m_roster.all();
    for (FsdSession *session : sessions) {
        if (session->isOpen())
            m_keepAlive.step(*session);
    }
    m_relay.updateFast(); // residents move without a line that comes in
}

bool FsdServer::addResident(FsdResident &resident)
{
    if (!m_roster.addResident(&resident))
        return false;
    m_relay.introduce(resident);
    return true;
}

void FsdServer::removeResident(FsdResident &resident)
{
    if (m_roster.resident(resident.callsign()) != &resident)
        return;
    m_roster.removeResident(&resident);
    m_relay.farewell(resident);
}

bool FsdServer::say(const FsdResident &resident, const QString &line)
{
    return m_relay.say(resident, line);
}

void FsdServer::sayPositions(const QList<FsdReport> &reports)
{
    m_relay.sayPositions(reports);
}

QStringList FsdServer::residents() const
{
    QStringList list;
    for (const FsdResident *resident : m_roster.residents())
        list.append(resident->callsign());
    return list;
}

bool FsdServer::with(const QString &callsign, const std::function<void(FsdSession &)> &action)
{
    FsdSession *session = m_roster.find(callsign);
    if (session)
        action(*session);
    return session != nullptr;
}

bool FsdServer::kill(const QString &callsign, const QString &reason)
{
    return with(callsign, [&](FsdSession &session) {
        session.send(toLine(fsd::pdu::KillRequest(common::serverCallsign, session.name(), reason)));
        session.finish();
    });
}

bool FsdServer::redirect(const QString &callsign, const QString &newServer)
{
    return with(callsign, [&](FsdSession &session) {
        session.send(toLine(fsd::pdu::ChangeServer(common::serverCallsign, session.name(), newServer)));
    });
}

bool FsdServer::handOver(const QString &callsign, FsdServer &target)
{
    return with(callsign, [&](FsdSession &session) {
        target.m_dispatcher->login().expect(*session.identity);
        redirect(callsign, target.address().toString());
    });
}

bool FsdServer::dropClient(const QString &callsign)
{
    return with(callsign, [](FsdSession &session) { session.drop(); });
}

bool FsdServer::sendError(const QString &callsign, int errorType, const QString &parameter, const QString &message)
{
    return with(callsign, [&](FsdSession &session) {
        session.send(
            toLine(fsd::pdu::ProtocolError(common::serverCallsign, session.name(), errorType, parameter, message)));
    });
}

bool FsdServer::sendText(const QString &callsign, const QString &text)
{
    return with(callsign, [&](FsdSession &session) {
        session.send(toLine(fsd::pdu::TextMessage(common::serverCallsign, session.name(), text)));
    });
}

bool FsdServer::setFast(const QString &callsign, bool fast)
{
    return with(callsign, [&](FsdSession &session) {
        session.send(toLine(fsd::pdu::SendFast(common::serverCallsign, session.name(), fast)));
    });
}

bool FsdServer::ping(const QString &callsign)
{
    return with(callsign, [this](FsdSession &session) { m_keepAlive.ping(session); });
}

bool FsdServer::challenge(const QString &callsign)
{
    return with(callsign, [this](FsdSession &session) { m_keepAlive.challenge(session); });
}

bool FsdServer::sendLine(const QString &callsign, const QString &line)
{
    return with(callsign, [&](FsdSession &session) { session.send(line + QLatin1StringView("\r\n")); });
}

bool FsdServer::sendBytes(const QString &callsign, const QByteArray &bytes)
{
    return with(callsign, [&](FsdSession &session) { session.sendQuietly(bytes); });
}

void FsdServer::setRejectTokens(bool reject)
{
    m_dispatcher->login().rejectTokens = reject;
}

void FsdServer::setRejectLogins(bool reject)
{
    m_dispatcher->login().rejectLogins = reject;
}

} // namespace tarvo::practice
