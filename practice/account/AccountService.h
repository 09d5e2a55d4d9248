#pragma once

#include "practice/account/TokenAuthority.h"

#include <QHostAddress>
#include <QHttpServer>
#include <QHttpServerResponse>
#include <QObject>

namespace tarvo::practice {

class AccountBook;
struct Account;

/// The account service: sign-in, tokens, history, profile and ranking as JSON over HTTP, under the path "/api"; and
/// the page "/register".
class AccountService : public QObject
{
    Q_OBJECT

public:
    AccountService(const AccountBook &accounts, TokenAuthority &tokens, QObject *parent = nullptr);
    ~AccountService() override;

    /// Starts to serve; port 0 takes a free one. Returns false when the port can't be had; see errorString().
    bool listen(const QHostAddress &address, quint16 port);
    void close();
    quint16 port() const;
    QString errorString() const;
    /// "http://address:port/api".
    QString baseUrl() const;
    QString registerUrl() const;

    /// Every request about an account is answered with DATABASE_ERROR (status 500) while set.
    void setDatabaseError(bool on);
    /// A request for an FSD token is answered with success false and this text while it isn't empty.
    void setFsdTokenError(const QString &text);
    /// Answers every request with this status and an empty body; 0 ends it.
    void setBareStatus(int status);

    /// For further pages on the same port. Routes must be added before listen().
    QHttpServer &http();

signals:
    /// One request was answered. `path` holds path and query, never a header or a body.
    void requestAnswered(const QString &method, const QString &path, int status);

private:
    using Handler = QHttpServerResponse (AccountService::*)(const QHttpServerRequest &);

    void route(const QString &path, QHttpServerRequest::Method method, Handler handler);
    void addRoutes();
    QHttpServerResponse logIn(const QHttpServerRequest &request);
    QHttpServerResponse refresh(const QHttpServerRequest &request);
    QHttpServerResponse fsdToken(const QHttpServerRequest &request);
    QHttpServerResponse history(const QHttpServerRequest &request);
    QHttpServerResponse profile(const QHttpServerRequest &request);
    QHttpServerResponse rating(const QHttpServerRequest &request);
    QHttpServerResponse registerPage(const QHttpServerRequest &request);
    const Account *bearer(const QHttpServerRequest &request, TokenUse use, JsonWebToken::Verdict *verdict) const;

    const AccountBook &m_accounts;
    TokenAuthority &m_tokens;
    QHttpServer m_http;
    class HttpGuard *m_guard = nullptr; ///< owned by m_http once bound
    QString m_error;
    QString m_fsdTokenError;
    QHostAddress m_address;
    int m_bareStatus = 0;
    bool m_databaseError = false;
};

} // namespace tarvo::practice
