#pragma once

#include "AppConfig.h"
#include "network/ApiService.h"
#include "support/HttpPeer.h"
#include "support/ManualClock.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>

#include <memory>

namespace tarvo::test {

inline const QString sessionsPath = QStringLiteral("/api/users/sessions");
inline const QString fsdPath = QStringLiteral("/api/users/sessions/fsd");

/// What a callback was told, and how often it was called.
struct Told
{
    int calls = 0;
    bool success = false;
    QString token;
    QString message;

    network::ApiService::Callback callback()
    {
        return [this](bool ok, const QString &text) {
            ++calls;
            success = ok;
            message = text;
        };
    }
    network::ApiService::TokenCallback tokenCallback()
    {
        return [this](bool ok, const QString &given, const QString &text) {
            ++calls;
            success = ok;
            token = given;
            message = text;
        };
    }
};

/// An ApiService on settings, a web service and a clock of its own.
class ApiFixture
{
    QTemporaryDir m_folder; // goes last

public:
    AppConfig config{m_folder.path()};
    HttpPeer peer;
    ManualClock clock;
    std::unique_ptr<network::ApiService> service;

    /// Builds the service over what the settings hold by now.
    network::ApiService &start() { return startAt(peer.baseUrl()); }
    network::ApiService &startAt(const QString &baseUrl)
    {
        ServiceEndpoints endpoints;
        endpoints.apiBaseUrl = baseUrl;
        service = std::make_unique<network::ApiService>(config, endpoints, clock);
        return *service;
    }
    /// Builds the service with tokens as from an earlier sign-in.
    network::ApiService &startSignedIn(const QString &jwt, const QString &refreshToken = QStringLiteral("refresh-1"))
    {
        config.set(config::authToken, jwt);
        config.set(config::authRefreshToken, refreshToken);
        return start();
    }

    qint64 nowSeconds() const { return clock.wallMs() / 1000; }
    QString jwtExpiringIn(qint64 seconds) const
    {
        return jwtOf(QJsonDocument(QJsonObject{{QStringLiteral("exp"), nowSeconds() + seconds}}).toJson());
    }
    static QString jwtOf(const QByteArray &payload)
    {
        constexpr auto form = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;
        return QString::fromLatin1(QByteArray(R"({"alg":"HS256"})").toBase64(form) + '.' + payload.toBase64(form) +
                                   ".signature");
    }
    /// A body with the tokens of a login or a refresh.
    static QByteArray authBody(const QString &code, const QString &jwt, const QString &refreshToken,
                               const QJsonObject &user = {})
    {
        const QJsonObject data{{QStringLiteral("token"), jwt},
                               {QStringLiteral("flush_token"), refreshToken},
                               {QStringLiteral("user"), user}};
        return QJsonDocument(QJsonObject{{QStringLiteral("code"), code},
                                         {QStringLiteral("message"), QStringLiteral("fine")},
                                         {QStringLiteral("data"), data}})
            .toJson();
    }

    QNetworkAccessManager *manager() const { return service->findChild<QNetworkAccessManager *>(); }
    QTimer *timer() const { return service->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly); }
    /// Fires the refresh timer now, if it runs.
    void fireTimer() const
    {
        if (timer()->isActive())
            timer()->start(0);
    }

    /// The base URL of a port on which nothing listens.
    static QString deadBaseUrl()
    {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        return QStringLiteral("http://127.0.0.1:%1/api").arg(server.serverPort());
    }
};

} // namespace tarvo::test
