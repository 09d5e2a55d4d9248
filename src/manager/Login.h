#pragma once

#include "manager/SessionMark.h"

#include <QObject>
#include <QString>

#include <optional>

namespace tarvo::fsd::pdu {
struct ServerIdentification;
}

namespace tarvo::manager {

class PositionReporter;
struct SessionContext;

/// How a pilot says who he is: with the password at once, or with a token once the server has identified itself.
class Login : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive it. `reporter` is started once the login's lines are sent.
    Login(SessionContext &session, PositionReporter &reporter, QObject *parent = nullptr);

    /// The line is up.
    void onNetworkConnected();
    void onServerIdentification(const fsd::pdu::ServerIdentification &pdu);

    /// Password or token of the last login, to be masked in the log.
    const QString &secret() const { return m_secret; }

signals:
    /// The account service gives no token. `error`: why, in its own words, for the pilot.
    void tokenRefused(const QString &error);

private:
    void requestFsdToken();
    void logIn(const QString &password);
    void sendLoginPdu();
    QString password() const;

    SessionContext &m_session;
    PositionReporter &m_reporter;
    QString m_secret;
    std::optional<SessionMark> m_tokenRequest; ///< of a request under way
};

} // namespace tarvo::manager
