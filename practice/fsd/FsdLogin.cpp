#include "practice/fsd/FsdLogin.h"

#include "common/Callsign.h"
#include "fsd/pdu/AddATC.h"
#include "fsd/pdu/AddPilot.h"
#include "fsd/pdu/ClientIdentification.h"
#include "fsd/pdu/FsdLine.h"
#include "practice/account/AccountBook.h"
#include "practice/account/TokenAuthority.h"
#include "practice/fsd/FsdErrors.h"
#include "practice/fsd/FsdSession.h"
#include "practice/fsd/Roster.h"

#include <type_traits>

namespace tarvo::practice {

using common::serverCallsign;

/// What both kinds of login line say.
struct FsdLogin::Request
{
    FsdIdentity identity;
    QString to;
    QString password;
    int rating = 0;
    int revision = 0;
};

namespace {
bool isCallsign(const QString &text)
{
    return common::isCallsign(text) && text != serverCallsign;
}

/// A login as the others get it.
template <class Pdu>
FsdIdentity identityOf(Pdu login)
{
    login.password.clear();
    return {login.From, login.cid, login.realName, std::is_same_v<Pdu, fsd::pdu::AddATC>, fsd::toLine(login)};
}
} // namespace

bool FsdLogin::identify(FsdSession &session, const fsd::pdu::ClientIdentification &id)
{
    const bool sameClient =
        !session.loggedIn() || (id.From == session.identity->callsign && id.cid == session.identity->cid);
    const bool knownCid = m_accounts.find(id.cid) != nullptr;
    if (id.To != serverCallsign || !isCallsign(id.From) || id.clientId == 0 || id.clientName.isEmpty() || !knownCid ||
        !sameClient) {
        session.refuse(FsdError::UnauthorizedClient, id.From, QStringLiteral("Unauthorized client"));
        return false;
    }
    session.announcedCallsign = id.From;
    session.announcedCid = id.cid;
    const FsdIdentity expected = m_expected.value(id.From);
    if (session.loggedIn() || expected.cid != id.cid || m_roster.record(id.From))
        return false;
    m_expected.remove(id.From);
    session.identity = expected;
    session.handedOver = true;
    return true;
}

bool FsdLogin::addPilot(FsdSession &session, const fsd::pdu::AddPilot &pdu, const QString &recipient)
{
    return logIn(session, {identityOf(pdu), recipient, pdu.password, static_cast<int>(pdu.rating),
                           static_cast<int>(pdu.protocolRevision)});
}

bool FsdLogin::addAtc(FsdSession &session, const fsd::pdu::AddATC &pdu, const QString &recipient)
{
    return logIn(session, {identityOf(pdu), recipient, pdu.password, static_cast<int>(pdu.rating),
                           static_cast<int>(pdu.protocolRevision)});
}

bool FsdLogin::logIn(FsdSession &session, const Request &request)
{
    if (session.loggedIn() && request.identity.callsign == session.identity->callsign && !session.handedOver) {
        session.complain(FsdError::AlreadyRegistered, request.identity.callsign, QStringLiteral("Already registered"));
        return false;
    }
    if (!mayEnter(session, request))
        return false;
    const bool first = !session.loggedIn();
    session.handedOver = false;
    session.identity = request.identity;
    m_expected.remove(request.identity.callsign);
    return first;
}

bool FsdLogin::mayEnter(FsdSession &session, const Request &request) const
{
    const QString &callsign = request.identity.callsign;
    const QString &cid = request.identity.cid;
    const FsdClientRecord *holder = m_roster.record(callsign);
    const Account *account = m_accounts.find(cid);
    const bool otherThanAnnounced =
        !session.announcedCallsign.isEmpty() && (session.announcedCallsign != callsign || session.announcedCid != cid);
    if (request.to != serverCallsign)
        session.refuse(FsdError::SyntaxError, callsign, QStringLiteral("Syntax error"));
    else if (!isCallsign(callsign))
        session.refuse(FsdError::CallsignInvalid, callsign, QStringLiteral("Invalid callsign"));
    else if (otherThanAnnounced || (session.loggedIn() && holder != &session))
        session.refuse(FsdError::AlreadyRegistered, callsign, QStringLiteral("Already registered"));
    else if (holder && holder != &session)
        session.refuse(FsdError::CallsignInUse, callsign, QStringLiteral("Callsign in use"));
    else if (request.revision != 9 && request.revision != 100)
        session.refuse(FsdError::InvalidRevision, {}, QStringLiteral("Invalid protocol revision"));
    else if (rejectLogins || !account || !(request.revision == 100 ? tokenFits(request) : passwordFits(request)))
        session.refuse(FsdError::InvalidLogin, cid, QStringLiteral("Invalid CID or password"));
    else if (request.rating > account->user.rating)
        session.refuse(FsdError::LevelTooHigh, cid, QStringLiteral("Requested level too high"));
    else
        return true;
    return false;
}

bool FsdLogin::passwordFits(const Request &request) const
{
    return m_accounts.passwordFits(request.identity.cid, request.password);
}

bool FsdLogin::tokenFits(const Request &request) const
{
    qint64 cid = 0;
    return !rejectTokens &&
           m_tokens.check(TokenUse::Fsd, request.password.toLatin1(), &cid) == JsonWebToken::Verdict::Valid &&
           m_accounts.find(request.identity.cid)->user.cid == cid;
}

} // namespace tarvo::practice
