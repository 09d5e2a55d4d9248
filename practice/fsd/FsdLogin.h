#pragma once

#include "practice/fsd/FsdClientRecord.h"

#include <QHash>

namespace tarvo::fsd::pdu {
struct AddATC;
struct AddPilot;
struct ClientIdentification;
} // namespace tarvo::fsd::pdu

namespace tarvo::practice {

class AccountBook;
class FsdSession;
class Roster;
class TokenAuthority;

/// Lets clients in, or sends them away: "$ID", "#AP" and "#AA".
class FsdLogin
{
public:
    FsdLogin(const AccountBook &accounts, const TokenAuthority &tokens, const Roster &roster)
        : m_accounts(accounts), m_tokens(tokens), m_roster(roster)
    {
    }

    /// Takes the client's identification. Returns true when that completes a session handed over by another server.
    bool identify(FsdSession &session, const fsd::pdu::ClientIdentification &id);
    /// Takes a login, which was addressed to `recipient`. Returns true when the session is logged in now.
    bool addPilot(FsdSession &session, const fsd::pdu::AddPilot &pdu, const QString &recipient);
    bool addAtc(FsdSession &session, const fsd::pdu::AddATC &pdu, const QString &recipient);

    /// A client with this identity will come without another login.
    void expect(const FsdIdentity &identity) { m_expected.insert(identity.callsign, identity); }

    bool rejectTokens = false;
    bool rejectLogins = false;

private:
    struct Request;

    bool logIn(FsdSession &session, const Request &request);
    bool mayEnter(FsdSession &session, const Request &request) const;
    bool passwordFits(const Request &request) const;
    bool tokenFits(const Request &request) const;

    const AccountBook &m_accounts;
    const TokenAuthority &m_tokens;
    const Roster &m_roster;
    QHash<QString, FsdIdentity> m_expected; ///< by callsign; filled by this machine's developer only
};

} // namespace tarvo::practice
