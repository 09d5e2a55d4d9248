#pragma once

#include "ServiceEndpoints.h"
#include "support/HttpPeer.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

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

    /// This build's endpoints with the account service replaced by this one.
    ServiceEndpoints endpoints() const;

    /// The answer to requests of this method and path, whatever their query.
    void answer(const QByteArray &line, const QJsonObject &body);
    /// User 1001 signs in, by password and by refresh token.
    void acceptLogin();
    void refuseLogin(const QString &code);

    QList<Request> requests() const;
    /// How often a request line came in.
    qsizetype count(const QByteArray &line) const;

private:
    HttpPeer m_server;
};

inline const QByteArray loginLine = "POST /api/users/sessions";
inline const QByteArray refreshLine = "GET /api/users/sessions?first=true";

} // namespace tarvo::test
