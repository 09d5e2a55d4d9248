#pragma once

#include "common/MessageType.h"

#include <QObject>
#include <QString>

#include <optional>

namespace tarvo::fsd::pdu {
struct KillRequest;
}
namespace tarvo::model {
struct ConnectInfo;
}

namespace tarvo::manager {

struct SessionContext;

/// How a session on the network begins and ends. NetworkManager raises its signals as its own.
///
/// A session is over when everybody has been told so. Until then the next one can't begin: whoever connected within
/// the news of the end would hear the rest of it as if it were of his new session.
class SessionLifecycle : public QObject
{
    Q_OBJECT

public:
    /// `session` must outlive it.
    explicit SessionLifecycle(SessionContext &session, QObject *parent = nullptr);

    /// Connected, or on the way there or back.
    bool isBusy() const { return m_phase != Phase::Idle; }
    /// True while begin() is on the stack, where it may look a name up in an event loop of its own.
    bool isResolving() const { return m_resolving > 0; }

    /// Starts a connection; not to be called while busy. Returns true while it is under way.
    bool begin(const model::ConnectInfo &info, const QString &host, quint16 port);
    /// The server has accepted the login. Counts once for each connection.
    void completeLogin();
    /// The server has announced `callsign`; it accepts the login with that if it is the own one.
    void onAnnounced(const QString &callsign);

    /// The pilot's wish.
    void leave();
    /// The simulator's wish. `reason`: for the pilot; may be empty.
    void forceOut(const QString &reason);
    /// The server closes next.
    void onKillRequest(const fsd::pdu::KillRequest &pdu);
    void onTokenRefused(const QString &error);

    void onNetworkConnected();
    void onNetworkDisconnected();
    /// `error`: without secrets, for the pilot.
    void onNetworkError(const QString &error);

signals:
    /// Raised before anything else of a session.
    void began();
    /// The line is up, and the pilot has been told.
    void lineUp();
    /// The session is over, which nobody has been told yet.
    void ended();
    // As NetworkManager's.
    void networkConnected(const QString &callsign);
    void networkDisconnected(bool forced);
    void notificationPosted(const QString &message, tarvo::common::MessageType type);

private:
    enum class Phase
    {
        Idle,
        Connecting,
        Connected,
        TellingTheEnd
    };

    void startOver(Phase phase);
    void end(Phase phase);
    bool canLeave() const { return isBusy() && m_phase != Phase::TellingTheEnd; }
    void deleteAndDisconnect();
    void sendDeletePdu();
    void tellSimulatorOfTheEnd();
    void notify(const QString &message, common::MessageType type);

    SessionContext &m_session;
    Phase m_phase = Phase::Idle;
    std::optional<QString> m_forced; ///< why a disconnect is coming that is not the user's wish
    int m_resolving = 0;             ///< begin() calls on the stack
};

} // namespace tarvo::manager
