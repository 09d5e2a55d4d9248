#pragma once

#include "ServiceEndpoints.h"

#include <QByteArray>
#include <QHttpServer>
#include <QJsonObject>
#include <QList>
#include <QMap>

namespace tarvo::test {

/// An account service on a loopback port of its own, with answers that a test sets. What has none is answered with 404.
class AccountPeer
{
public:
    struct Request
    {
        QByteArray line; ///< such as "POST /api/users/sessions" or "GET /api/users/sessions?first=true"
        QByteArray authorization;
        QJsonObject body;
    };

    AccountPeer();

    /// This build's endpoints with the account service replaced by this one.
    ServiceEndpoints endpoints() const;

    void answer(const QByteArray &line, const QJsonObject &body);
    /// User 1001 signs in, by password and by refresh token.
    void acceptLogin();
    void refuseLogin(const QString &code);

    const QList<Request> &requests() const { return m_requests; }
    /// How often a request line came in.
    qsizetype count(const QByteArray &line) const;

private:
    void handle(const QHttpServerRequest &request, QHttpServerResponder &&responder);

    QHttpServer m_server;
    quint16 m_port = 0;
    QMap<QByteArray, QJsonObject> m_answers;
    QList<Request> m_requests;
};

inline const QByteArray loginLine = "POST /api/users/sessions";
inline const QByteArray refreshLine = "GET /api/users/sessions?first=true";

} // namespace tarvo::test
