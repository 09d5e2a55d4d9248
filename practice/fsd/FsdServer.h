#pragma once

#include "common/Clock.h"
#include "practice/fsd/FsdKeepAlive.h"
#include "practice/fsd/FsdRelay.h"
#include "practice/fsd/FsdSettings.h"
#include "practice/fsd/Roster.h"

#include <QHostAddress>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <memory>

class QTcpServer;

namespace tarvo::practice {

class AccountBook;
class FsdDispatcher;
class FsdSession;
class TokenAuthority;

/// The FSD server: greeting, login, relay of positions and text by distance, pings and challenges. Any number of
/// clients up to the limit; what one of them sends can cost itself its line or its connection and nothing else.
class FsdServer : public QObject
{
    Q_OBJECT

public:
    /// The clock rules time limits, pings, challenges and the lines a client may send each second.
    FsdServer(const AccountBook &accounts, const TokenAuthority &tokens, FsdSettings settings = {},
              const common::Clock &clock = common::systemClock(), QObject *parent = nullptr);
    ~FsdServer() override;

    /// Starts to serve; port 0 takes a free one. Returns false when the port can't be had; see errorString().
    bool listen(const QHostAddress &address, quint16 port);
    /// Ends every session and stops listening.
    void close();
    quint16 port() const;
    QHostAddress address() const;
    QString errorString() const;

    /// Those logged in, in the order of their login.
    QStringList callsigns() const;
    /// The callsign of the client that logged in last under that CID; empty when there is none.
    QString callsignOf(qint64 cid) const;
    /// Connections, logged in or not.
    int connectionCount() const;

    /// Does what is due by now: sends away who is past a time limit, pings, challenges, looks who is near to whom.
    /// Called by a timer; a test with a clock of its own may call it.
    void keepAlive();

    /// Lets a resident in: the others are told of it, and it is told of them as they come. No limit of the settings
    /// holds for residents. Returns false when its callsign is taken. It must not end before removeResident().
    bool addResident(FsdResident &resident);
    /// Tells the others that it is gone. One that never came in is ignored.
    void removeResident(FsdResident &resident);
    /// Carries a line of a resident, with its line end, to the connected clients: a position, which must be the one of
    /// its record, to those in range, anything else to its recipient. Returns false when it reaches nobody.
    bool say(const FsdResident &resident, const QString &line);
    /// Positions of many residents at once; each client gets them in one piece.
    void sayPositions(const QList<FsdReport> &reports);
    /// The callsigns of the residents, in the order in which they came.
    QStringList residents() const;

    // What a developer breaks things with. All take the callsign of a client that is logged in, in upper case, and
    // return false when there is none.

    /// "$!!" with the reason, and the connection is closed.
    bool kill(const QString &callsign, const QString &reason);
    /// "$XX" to another host; the client goes there on the same port.
    bool redirect(const QString &callsign, const QString &newServer);
    /// redirect() to a server that then takes the session over without another login.
    bool handOver(const QString &callsign, FsdServer &target);
    /// The connection is closed without a word.
    bool dropClient(const QString &callsign);
    /// "$ER".
    bool sendError(const QString &callsign, int errorType, const QString &parameter, const QString &message);
    /// "#TM" from the server.
    bool sendText(const QString &callsign, const QString &text);
    /// "$SF", whoever is near.
    bool setFast(const QString &callsign, bool fast);
    /// "$PI" now.
    bool ping(const QString &callsign);
    /// "$ZC" now.
    bool challenge(const QString &callsign);
    /// Any line, without its line end, such as a malformed one.
    bool sendLine(const QString &callsign, const QString &line);
    /// Any bytes as they stand, such as half a line.
    bool sendBytes(const QString &callsign, const QByteArray &bytes);

    /// Refuses every FSD token, or none.
    void setRejectTokens(bool reject);
    /// Refuses every login, or none.
    void setRejectLogins(bool reject);

signals:
    /// A line came or went, without its line end, as it stands on the wire: print it through maskSecrets(). `client` is
    /// the callsign, or address and port before the login. Positions of residents and all that has to do with a crowd
    /// are left out.
    void lineReceived(const QString &client, const QString &line);
    void lineSent(const QString &client, const QString &line);
    void clientConnected(const QString &client);
    void clientLoggedIn(const QString &callsign, bool observer);
    /// A session was refused or cut off, and why.
    void clientRefused(const QString &client, const QString &reason);
    void clientLeft(const QString &client);

private:
    void acceptConnections();
    void attach(FsdSession *session);
    void remove(FsdSession *session);
    /// Lets `action` work on the session of that callsign. Returns false when there is none.
    bool with(const QString &callsign, const std::function<void(FsdSession &)> &action);

    FsdSettings m_settings;
    const common::Clock &m_clock;
    FsdKeepAlive m_keepAlive;
    std::unique_ptr<QTcpServer> m_server;
    Roster m_roster;
    FsdRelay m_relay;
    std::unique_ptr<FsdDispatcher> m_dispatcher;
    QTimer m_timer;
};

} // namespace tarvo::practice
