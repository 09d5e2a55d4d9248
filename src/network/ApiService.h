#pragma once

#include "ServiceEndpoints.h"
#include "common/Clock.h"
#include "model/AccountModels.h"
#include "model/RatingList.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>

class QNetworkReply;
class QNetworkRequest;

namespace tarvo {
class AppConfig;
}

namespace tarvo::network {

struct RecordQuery;
struct ReplyOutcome;

/// Client of the account service: signs in, keeps the tokens alive, fetches the FSD token, history, profile and
/// leaderboard. Main thread only. Every call is asynchronous; its callback runs once, from the event loop, also on
/// failure; only clearSession() drops the callbacks of what is under way. Texts in callbacks are for the user. The
/// caller guards its callback against its own death.
class ApiService : public QObject
{
    Q_OBJECT

public:
    using Callback = std::function<void(bool success, const QString &message)>;
    using TokenCallback = std::function<void(bool success, const QString &token, const QString &error)>;
    template <class T>
    using RecordCallback = std::function<void(bool success, const T &record, const QString &error)>;

    /// The program's own service, over AppConfig::instance() and this build's endpoints.
    static ApiService &instance();

    explicit ApiService(AppConfig &config, const ServiceEndpoints &endpoints = {},
                        const common::Clock &clock = common::systemClock(), QObject *parent = nullptr);

    void login(const QString &username, const QString &password, Callback callback);
    /// `first` marks the refresh at the program's start.
    void refresh(const QString &refreshToken, Callback callback, bool first = false);
    /// A token for one FSD login. Refreshes the JWT first when it has at most 60 s to live.
    void getFSDToken(TokenCallback callback);
    void getUserHistory(RecordCallback<model::UserHistory> callback);
    void getUserProfile(RecordCallback<model::UserProfile> callback);
    void getLeaderboard(RecordCallback<model::RatingList> callback);

    /// Forgets tokens and user and stops the refresh timer. Replies still under way store nothing and call nobody.
    /// The configuration is the caller's to clear.
    void clearSession();
    /// How long a transfer may stand still before it fails as timed out; 30 s at first.
    void setTransferTimeout(std::chrono::milliseconds timeout);
    /// How long one call may take as a whole before it fails as timed out; 60 s at first.
    void setCallTimeout(std::chrono::milliseconds timeout) { m_callTimeout = timeout; }
    std::chrono::milliseconds callTimeout() const { return m_callTimeout; }

    const model::User &currentUser() const { return m_user; }
    bool hasToken() const { return !m_jwt.isEmpty(); }
    /// While a callback runs: whether the reply that it tells of had an HTTP status. Without one nobody answered.
    bool wasAnswered() const { return m_answered; }
    /// True while a call is under way.
    bool isWaiting() const { return m_underWay > 0; }

private:
    using OutcomeHandler = std::function<void(const ReplyOutcome &)>;

    QNetworkRequest request(const QString &path, const QString &bearer = {}) const;
    /// `longestBody`: in bytes.
    void whenFinished(QNetworkReply *reply, qint64 longestBody, OutcomeHandler handler);
    /// Runs `task` from the event loop, unless the session was cleared meanwhile.
    void later(std::function<void()> task);

    void onLoginReply(const ReplyOutcome &outcome, const QStringList &secrets, const Callback &callback);
    void onRefreshReply(const ReplyOutcome &outcome, const QString &usedToken, const Callback &callback);
    void acceptTokens(const model::AuthData &data);
    void requestFSDToken(TokenCallback callback, bool mayRetry);
    void refreshThenRequestFSDToken(TokenCallback callback, bool mayRetry);
    template <class T>
    void getRecord(const RecordQuery &query, RecordCallback<T> callback);

    void armRefreshTimer();
    void onRefreshTimeout();
    qint64 nowSeconds() const;

    AppConfig &m_config;
    const common::Clock &m_clock;
    QNetworkAccessManager m_manager{this};
    QString m_baseUrl;
    QString m_jwt;
    QString m_refreshToken;
    model::User m_user;
    QTimer m_refreshTimer{this};
    qint64 m_jwtExpiry = 0;   ///< Unix seconds, 0 for unknown
    quint64 m_generation = 0; ///< counts the cleared sessions, so that a late reply can tell that it is stale
    std::chrono::milliseconds m_callTimeout{60'000};
    int m_underWay = 0;        ///< replies that aren't finished
    bool m_answered = false;   ///< by the last reply
    bool m_waitGoesOn = false; ///< the timer runs a clamped part of a longer wait
};

} // namespace tarvo::network
