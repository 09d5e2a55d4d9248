#pragma once

#include "ServiceEndpoints.h"
#include "common/Clock.h"
#include "model/AccountModels.h"
#include "model/RatingList.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QTimer>

#include <functional>

namespace tarvo {
class AppConfig;
}

namespace tarvo::network {

/// Client of the account service: signs in, keeps the tokens alive, fetches the FSD token, history, profile and
/// leaderboard. Main thread only. Every call is asynchronous; its callback runs once, on the main thread, also on
/// failure. Texts in callbacks are for the user. The caller guards its callback against its own death.
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

    /// Forgets tokens and user and stops the refresh timer. Replies still under way store nothing. The configuration
    /// is the caller's to clear.
    void clearSession();

    const model::User &currentUser() const { return m_user; }
    bool hasToken() const { return !m_jwt.isEmpty(); }

private:
    QNetworkAccessManager m_manager;
    QString m_baseUrl;
    QString m_jwt;
    QString m_refreshToken;
    model::User m_user;
    QTimer m_refreshTimer;
    qint64 m_jwtExpiry = 0; ///< Unix seconds, 0 for unknown
};

} // namespace tarvo::network
