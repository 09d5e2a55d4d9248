#pragma once

#include "practice/FsdLogin.h"
#include "practice/FsdRelay.h"

#include <QObject>

namespace tarvo::practice {

/// Reads the clients' lines and does what each asks. One place for every identifier that a client may send.
class FsdDesk : public QObject
{
    Q_OBJECT

public:
    FsdDesk(const AccountBook &accounts, const TokenAuthority &tokens, const Roster &roster,
            const FsdSettings &settings);

    /// The first line of a session.
    void greet(FsdSession &session);
    void handle(FsdSession &session, const QString &line);
    /// Pings, challenges and time limits; `nowMs` is steady time.
    void keepAlive(FsdSession &session, qint64 nowMs);
    void ping(FsdSession &session);
    void challenge(FsdSession &session);
    /// What is left to do when a session has ended.
    void leave(FsdSession &session);

    FsdLogin &login() { return m_login; }

signals:
    void loggedIn(FsdSession &session);

private:
    using Handler = void (FsdDesk::*)(FsdSession &, const QStringList &fields, const QString &line);
    struct Command;
    static const Command commands[];
    static const Command *commandOf(const QString &line);

    bool mayUse(FsdSession &session, const Command &command, const QStringList &fields) const;
    void enter(FsdSession &session);

    void onIdentification(FsdSession &session, const QStringList &fields, const QString &line);
    void onAddPilot(FsdSession &session, const QStringList &fields, const QString &line);
    void onAddAtc(FsdSession &session, const QStringList &fields, const QString &line);
    void onDelete(FsdSession &session, const QStringList &fields, const QString &line);
    void onPilotPosition(FsdSession &session, const QStringList &fields, const QString &line);
    void onFastPosition(FsdSession &session, const QStringList &fields, const QString &line);
    void onAtcPosition(FsdSession &session, const QStringList &fields, const QString &line);
    void onText(FsdSession &session, const QStringList &fields, const QString &line);
    void onQuery(FsdSession &session, const QStringList &fields, const QString &line);
    void onPing(FsdSession &session, const QStringList &fields, const QString &line);
    void onAuthResponse(FsdSession &session, const QStringList &fields, const QString &line);
    void onFlightPlan(FsdSession &session, const QStringList &fields, const QString &line);
    void onForOthers(FsdSession &session, const QStringList &fields, const QString &line);

    void answerQuery(FsdSession &session, const QStringList &fields);
    void answerFlightPlan(FsdSession &session, const QString &callsign);
    void moveTo(FsdSession &session, double latitude, double longitude, const QString &line);

    const Roster &m_roster;
    const FsdSettings &m_settings;
    FsdLogin m_login;
    FsdRelay m_relay;
};

} // namespace tarvo::practice
