#pragma once

#include "practice/fsd/FsdKeepAlive.h"
#include "practice/fsd/FsdLogin.h"
#include "practice/fsd/FsdRelay.h"

#include <QObject>

namespace tarvo::fsd::pdu {
struct ClientQuery;
}

namespace tarvo::practice {

/// Reads the clients' lines and does what each asks. One place for every message that a client may send.
class FsdDispatcher : public QObject
{
    Q_OBJECT

public:
    /// Everything that it is given must outlive it.
    FsdDispatcher(const AccountBook &accounts, const TokenAuthority &tokens, const Roster &roster,
                  const FsdKeepAlive &keepAlive, const FsdSettings &settings);

    /// The first line of a session.
    void greet(FsdSession &session);
    /// Does what a line, without its line end, asks for. One that is malformed, unknown or sent under a callsign that
    /// isn't the session's gets "$ER" and counts against the session.
    void handle(FsdSession &session, const QString &line);
    /// What is left to do when a session has ended.
    void leave(FsdSession &session);

    /// Who gets in: what refuses logins, and who is expected from another server.
    FsdLogin &login() { return m_login; }

signals:
    /// The session has its identity now; nothing has been sent to it since.
    void loggedIn(FsdSession &session);

private:
    struct Reader;

    /// False, and a complaint, for a sender that isn't the session's.
    static bool isOwn(FsdSession &session, const QString &sender);
    void enter(FsdSession &session);
    void onAuthResponse(FsdSession &session, const QString &line);
    void answerQuery(FsdSession &session, const fsd::pdu::ClientQuery &query);
    /// A client of the token protocol asks by text for every plan that it gets: with the plan in the answer to that,
    /// the two would never come to an end.
    void answerFlightPlan(FsdSession &session, const QString &callsign, bool withPlan);

    const Roster &m_roster;
    const FsdKeepAlive &m_keepAlive;
    const FsdSettings &m_settings;
    FsdLogin m_login;
    FsdRelay m_relay;
};

} // namespace tarvo::practice
