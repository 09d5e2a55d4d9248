#include "manager/Login.h"

#include "AppConfig.h"
#include "fsd/pdu/AddATC.h"
#include "fsd/pdu/AddPilot.h"
#include "fsd/pdu/ClientIdentification.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/ServerIdentification.h"
#include "manager/ClientIdentity.h"
#include "manager/OneLine.h"
#include "manager/PositionReporter.h"
#include "manager/ServerCallsign.h"
#include "manager/SessionContext.h"
#include "network/ApiService.h"
#include "simulator/Simulator.h"

#include <QDebug>
#include <QPointer>

namespace tarvo::manager {

using namespace fsd::pdu;

Login::Login(SessionContext &session, PositionReporter &reporter, QObject *parent)
    : QObject(parent), m_session(session), m_reporter(reporter)
{
}

void Login::onNetworkConnected()
{
    if (!m_session.usesTokens())
        logIn(password());
}

void Login::onServerIdentification(const ServerIdentification &pdu)
{
    qInfo().noquote() << "Server version:" << excerpt(pdu.version);
    ClientIdentification answer;
    answer.From = m_session.info.callsign;
    answer.To = serverCallsign;
    answer.clientId = clientIdentity::id;
    answer.clientName = clientIdentity::name;
    answer.majorVersion = clientIdentity::majorVersion;
    answer.minorVersion = clientIdentity::minorVersion;
    answer.cid = m_session.username();
    answer.systemUniqueId = machineId();
    const SessionMark mark = m_session.mark();
    m_session.send(answer);
    if (mark.holds() && m_session.usesTokens())
        requestFsdToken();
}

/// One at a time: a server that identifies itself over and over costs the account service nothing.
void Login::requestFsdToken()
{
    if (m_tokenRequest && m_tokenRequest->holds())
        return;
    const SessionMark mark = m_session.mark();
    m_tokenRequest = mark;
    const QPointer<Login> self(this);
    m_session.api.getFSDToken([self, mark](bool success, const QString &token, const QString &error) {
        if (!self || !mark.holds())
            return;
        self->m_tokenRequest.reset();
        if (success)
            self->logIn(token);
        else
            emit self->tokenRefused(error);
    });
}

void Login::logIn(const QString &password)
{
    m_secret = password;
    const SessionMark mark = m_session.mark();
    sendLoginPdu();
    m_session.send(ClientQuery(m_session.info.callsign, serverCallsign, ClientQueryType::PublicAddress, {}));
    if (mark.holds()) // a server that has gone shows while a line is sent, and the session is over by then
        m_reporter.start();
}

void Login::sendLoginPdu()
{
    const QString password = onOneLine(m_secret);
    const auto revision = m_session.usesTokens() ? ProtocolRevision::Token : ProtocolRevision::Classic;
    if (m_session.info.observer) {
        m_session.send(AddATC(m_session.info.callsign, m_session.realName(), m_session.username(), password,
                              NetworkRating::Observer, revision));
        return;
    }
    AddPilot login;
    login.From = m_session.info.callsign;
    login.To = serverCallsign;
    login.cid = m_session.username();
    login.password = password;
    login.rating = NetworkRating::Observer;
    login.protocolRevision = revision;
    if (const std::shared_ptr<simulator::Simulator> simulator = m_session.simulator)
        login.simulatorType = static_cast<SimulatorType>(simulator->simulatorType());
    login.realName = m_session.realNameWithAirport();
    m_session.send(login);
}

QString Login::password() const
{
    // What was typed for this login session goes before what is stored.
    const QString typed = m_session.config.get(config::sessionPassword);
    return typed.isEmpty() ? m_session.config.get(config::authPassword) : typed;
}

} // namespace tarvo::manager
