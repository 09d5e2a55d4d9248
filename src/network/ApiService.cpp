#include "network/ApiService.h"

#include "AppConfig.h"
#include "network/JwtExpiry.h"
#include "network/LogRedaction.h"
#include "network/RecordQuery.h"
#include "network/ReplyOutcome.h"
#include "network/ReplyTexts.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>
#include <QUrlQuery>

#include <utility>

namespace tarvo::network {

namespace {

constexpr std::chrono::milliseconds defaultTransferTimeout{30'000};

QJsonObject jsonObject(const QByteArray &body)
{
    return QJsonDocument::fromJson(body).object();
}

QString networkError(const ReplyOutcome &outcome)
{
    return QStringLiteral("Network error: ") + outcome.errorString;
}

void logRequest(const char *name, const QNetworkRequest &request)
{
    qDebug().noquote().nospace() << name << " request: " << request.url().toString();
}

} // namespace

ApiService &ApiService::instance()
{
    static ApiService service(AppConfig::instance());
    return service;
}

ApiService::ApiService(AppConfig &config, const ServiceEndpoints &endpoints, const common::Clock &clock,
                       QObject *parent)
    : QObject(parent),
      m_config(config),
      m_clock(clock),
      m_baseUrl(endpoints.apiBaseUrl),
      m_jwt(config.get(config::authToken)),
      m_refreshToken(config.get(config::authRefreshToken))
{
    // A redirect to another host would take the bearer token along.
    m_manager.setRedirectPolicy(QNetworkRequest::SameOriginRedirectPolicy);
    setTransferTimeout(defaultTransferTimeout);
    m_refreshTimer.setSingleShot(true);
    connect(&m_refreshTimer, &QTimer::timeout, this, &ApiService::onRefreshTimeout);
    if (!m_jwt.isEmpty()) {
        m_jwtExpiry = jwtExpiry(m_jwt);
        qDebug("Restored JWT token from config");
        armRefreshTimer();
    }
}

void ApiService::login(const QString &username, const QString &password, Callback callback)
{
    const QNetworkRequest loginRequest = request(QStringLiteral("/users/sessions"));
    const QJsonObject body{{QStringLiteral("username"), username}, {QStringLiteral("password"), password}};
    logRequest("Login", loginRequest);
    whenFinished(m_manager.post(loginRequest, QJsonDocument(body).toJson(QJsonDocument::Compact)), longestTokenReply,
                 [this, password, callback = std::move(callback)](const ReplyOutcome &outcome) {
                     onLoginReply(outcome, {password}, callback);
                 });
}

void ApiService::onLoginReply(const ReplyOutcome &outcome, const QStringList &secrets, const Callback &callback)
{
    qDebug() << "Login response status code:" << outcome.httpStatus;
    model::ApiResponse<model::AuthData> response;
    response.parse(jsonObject(outcome.body));
    const QStringList allSecrets = secrets + QStringList{response.data.token, response.data.flushToken};
    qDebug().noquote() << "Login response data:" << redactedBody(outcome.body, allSecrets);
    // A refused login comes with an HTTP error as well: the body, if there is one, says more.
    if (outcome.body.isEmpty()) {
        callback(false, ReplyTexts::loginError(outcome));
        return;
    }
    qDebug().noquote() << "Login response code:" << redactedText(response.code, allSecrets)
                       << "message:" << redactedText(response.message, allSecrets);
    if (response.code != QLatin1String("LOGIN_SUCCESS")) {
        callback(false, ReplyTexts::loginCode(response.code));
        return;
    }
    m_refreshToken = response.data.flushToken;
    m_user = response.data.user;
    acceptTokens(response.data);
    callback(true, response.message);
}

void ApiService::refresh(const QString &refreshToken, Callback callback, bool first)
{
    QNetworkRequest refreshRequest = request(QStringLiteral("/users/sessions"), refreshToken);
    if (first) {
        QUrl url = refreshRequest.url();
        url.setQuery(QUrlQuery{{QStringLiteral("first"), QStringLiteral("true")}});
        refreshRequest.setUrl(url);
    }
    logRequest("Refresh", refreshRequest);
    whenFinished(m_manager.get(refreshRequest), longestTokenReply,
                 [this, refreshToken, callback = std::move(callback)](const ReplyOutcome &outcome) {
                     onRefreshReply(outcome, refreshToken, callback);
                 });
}

void ApiService::onRefreshReply(const ReplyOutcome &outcome, const QString &usedToken, const Callback &callback)
{
    if (!outcome.ok()) {
        callback(false, ReplyTexts::refreshError(outcome));
        return;
    }
    model::ApiResponse<model::AuthData> response;
    response.parse(jsonObject(outcome.body));
    const QStringList secrets{response.data.token, response.data.flushToken, usedToken, m_refreshToken, m_jwt};
    qDebug().noquote().nospace() << "Refresh response code: " << redactedText(response.code, secrets)
                                 << " message: " << redactedText(response.message, secrets);
    // The code is not looked at: a token is success.
    if (response.data.token.isEmpty()) {
        callback(false, response.message.isEmpty() ? ReplyTexts::refreshWithoutToken() : response.message);
        return;
    }
    if (!response.data.flushToken.isEmpty())
        m_refreshToken = response.data.flushToken;
    if (!response.data.user.username.isEmpty()) {
        m_user = response.data.user;
        qDebug().noquote().nospace() << "Updated current user info: CID=" << m_user.cid
                                     << ", username=" << redactedText(m_user.username, secrets);
    }
    acceptTokens(response.data);
    callback(true, response.message);
}

void ApiService::acceptTokens(const model::AuthData &data)
{
    m_jwt = data.token;
    m_jwtExpiry = jwtExpiry(m_jwt);
    m_config.set(config::authToken, m_jwt);
    m_config.set(config::authRefreshToken, m_refreshToken);
    armRefreshTimer();
}

void ApiService::getFSDToken(TokenCallback callback)
{
    if (m_jwt.isEmpty() || !expiresSoon(m_jwtExpiry, nowSeconds())) {
        requestFSDToken(std::move(callback), true);
    } else if (m_refreshToken.isEmpty()) {
        later([callback = std::move(callback)] {
            callback(false, {}, QStringLiteral("JWT token expired and refresh token is unavailable"));
        });
    } else {
        refreshThenRequestFSDToken(std::move(callback), true);
    }
}

void ApiService::refreshThenRequestFSDToken(TokenCallback callback, bool mayRetry)
{
    refresh(m_refreshToken, [this, mayRetry, callback = std::move(callback)](bool success, const QString &message) {
        if (success)
            requestFSDToken(callback, mayRetry);
        else
            callback(false, {}, QStringLiteral("Refresh token failed: %1").arg(message));
    });
}

void ApiService::requestFSDToken(TokenCallback callback, bool mayRetry)
{
    if (m_jwt.isEmpty()) {
        later([callback = std::move(callback)] {
            callback(false, {}, QStringLiteral("No JWT token found, get FSD token fail"));
        });
        return;
    }
    const QNetworkRequest tokenRequest = request(QStringLiteral("/users/sessions/fsd"), m_jwt);
    logRequest("GetFSDToken", tokenRequest);
    whenFinished(m_manager.get(tokenRequest), longestTokenReply,
                 [this, mayRetry, callback = std::move(callback)](const ReplyOutcome &outcome) {
                     if (outcome.ok()) {
                         model::FSDToken token;
                         token.parse(jsonObject(outcome.body));
                         callback(token.success, token.success ? token.token : QString(),
                                  token.success ? QString() : token.errorMsg);
                     } else if (outcome.error == QNetworkReply::AuthenticationRequiredError && mayRetry &&
                                !m_refreshToken.isEmpty()) {
                         refreshThenRequestFSDToken(callback, false);
                     } else {
                         callback(false, {}, networkError(outcome));
                     }
                 });
}

template <class T>
void ApiService::getRecord(const RecordQuery &query, RecordCallback<T> callback)
{
    if (m_jwt.isEmpty()) {
        later([error = query.missingTokenText(), callback = std::move(callback)] { callback(false, T(), error); });
        return;
    }
    const QNetworkRequest recordRequest = request(query.path, m_jwt);
    logRequest(query.logName, recordRequest);
    whenFinished(m_manager.get(recordRequest), longestRecordReply,
                 [query, callback = std::move(callback)](const ReplyOutcome &outcome) {
                     if (!outcome.ok()) {
                         callback(false, T(), networkError(outcome));
                         return;
                     }
                     const RecordReply<T> reply = RecordReply<T>::parse(jsonObject(outcome.body));
                     if (query.isSuccess(reply.code))
                         callback(true, reply.record, {});
                     else
                         callback(false, T(), reply.message.isEmpty() ? query.fallbackError : reply.message);
                 });
}

void ApiService::getUserHistory(RecordCallback<model::UserHistory> callback)
{
    getRecord(RecordQuery::userHistory(), std::move(callback));
}

void ApiService::getUserProfile(RecordCallback<model::UserProfile> callback)
{
    getRecord(RecordQuery::userProfile(), std::move(callback));
}

void ApiService::getLeaderboard(RecordCallback<model::RatingList> callback)
{
    getRecord(RecordQuery::leaderboard(), std::move(callback));
}

void ApiService::clearSession()
{
    ++m_generation;
    m_jwt.clear();
    m_refreshToken.clear();
    m_user = model::User();
    m_jwtExpiry = 0;
    m_refreshTimer.stop();
}

void ApiService::setTransferTimeout(std::chrono::milliseconds timeout)
{
    m_manager.setTransferTimeout(static_cast<int>(timeout.count()));
}

QNetworkRequest ApiService::request(const QString &path, const QString &bearer) const
{
    QNetworkRequest result(QUrl(m_baseUrl + path));
    result.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    // The bearer token is the whole session: nothing that one pilot's replies leave behind goes out with another's.
    for (const QNetworkRequest::Attribute attribute :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute})
        result.setAttribute(attribute, QNetworkRequest::Manual);
    if (!bearer.isEmpty())
        result.setRawHeader("Authorization", "Bearer " + bearer.toUtf8());
    return result;
}

void ApiService::whenFinished(QNetworkReply *reply, qint64 longestBody, OutcomeHandler handler)
{
    ++m_underWay;
    limitBody(reply, longestBody);
    QTimer::singleShot(m_callTimeout, reply, &QNetworkReply::abort); // a body that drips is never silent
    connect(reply, &QNetworkReply::finished, this,
            [this, reply, generation = m_generation, handler = std::move(handler)] {
                --m_underWay;
                reply->deleteLater();
                if (generation != m_generation)
                    return;
                const ReplyOutcome outcome = takeOutcome(*reply);
                m_answered = outcome.httpStatus != 0;
                handler(outcome);
            });
}

void ApiService::later(std::function<void()> task)
{
    QMetaObject::invokeMethod(
        this,
        [this, generation = m_generation, task = std::move(task)] {
            if (generation == m_generation)
                task();
        },
        Qt::QueuedConnection);
}

void ApiService::armRefreshTimer()
{
    m_refreshTimer.stop(); // an old token's timer says nothing about the new one
    const qint64 delay = refreshDelayMs(m_jwtExpiry, nowSeconds());
    if (delay <= 0)
        return;
    const int interval = timerIntervalMs(delay);
    m_waitGoesOn = interval < delay;
    m_refreshTimer.start(interval);
}

void ApiService::onRefreshTimeout()
{
    if (std::exchange(m_waitGoesOn, false) && refreshDelayMs(m_jwtExpiry, nowSeconds()) > 0) {
        armRefreshTimer();
        return;
    }
    if (m_refreshToken.isEmpty()) {
        qWarning("Cannot auto refresh token: flush token is empty");
        return;
    }
    refresh(m_refreshToken, [secrets = QStringList{m_refreshToken, m_jwt}](bool success, const QString &message) {
        if (success)
            qInfo("Auto refresh token success");
        else
            qWarning().noquote() << "Auto refresh token fail, message:" << redactedText(message, secrets);
    });
}

qint64 ApiService::nowSeconds() const
{
    return m_clock.wallMs() / 1000;
}

} // namespace tarvo::network
