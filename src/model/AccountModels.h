#pragma once

#include "model/Parseable.h"

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>

namespace tarvo::model {

/// A pilot or controller as the account service knows him.
struct User : Parseable
{
    qint64 id = 0;                                                      ///< "id"
    QString username;                                                   ///< "username"
    QString email;                                                      ///< "email"
    qint64 cid = 0;                                                     ///< "cid", the number on the network
    QString avatarUrl;                                                  ///< "avatar_url"
    qint64 qq = 0;                                                      ///< "qq"
    int rating = 0;                                                     ///< "rating"
    bool guest = false;                                                 ///< "guest"
    bool underMonitor = false;                                          ///< "under_monitor"
    bool underSolo = false;                                             ///< "under_solo"
    bool tier2 = false;                                                 ///< "tier2"
    QDateTime soloUntil = QDateTime::fromSecsSinceEpoch(0, Qt::UTC);    ///< "solo_until"
    qint64 permission = 0;                                              ///< "permission"
    qint64 totalPilotTime = 0;                                          ///< "total_pilot_time", seconds
    qint64 totalAtcTime = 0;                                            ///< "total_atc_time", seconds
    QDateTime registerTime = QDateTime::fromSecsSinceEpoch(0, Qt::UTC); ///< "register_time"

    void parse(const QJsonObject &object) override;
};

/// What a login or a refresh brings.
struct AuthData : Parseable
{
    QString token;      ///< "token", the JWT
    QString flushToken; ///< "flush_token", the refresh token
    User user;          ///< "user"

    void parse(const QJsonObject &object) override;
};

/// The short-lived token for the FSD login; stands at the top of its reply, not under "data".
struct FSDToken : Parseable
{
    QString token;        ///< "token"
    bool success = false; ///< "success"
    QString errorMsg;     ///< "error_msg"

    void parse(const QJsonObject &object) override;
};

/// One flight or one controlling session.
struct UserHistoryEntry : Parseable
{
    QString callsign;      ///< "callsign"
    QDateTime startTime;   ///< "start_time"; invalid when absent
    QDateTime endTime;     ///< "end_time"; invalid when absent
    qint64 onlineTime = 0; ///< "online_time", seconds

    void parse(const QJsonObject &object) override;
};

/// The user's past sessions.
struct UserHistory : Parseable
{
    QList<UserHistoryEntry> pilots;      ///< "pilots"
    QList<UserHistoryEntry> controllers; ///< "controllers"
    qint64 totalPilotTime = 0;           ///< "total_pilot_time", seconds
    qint64 totalAtcTime = 0;             ///< "total_atc_time", seconds

    void parse(const QJsonObject &object) override;
};

/// The user's totals and standing.
struct UserProfile : Parseable
{
    qint64 totalPilotTime = 0; ///< "total_pilot_time", seconds
    qint64 totalAtcTime = 0;   ///< "total_atc_time", seconds
    qint64 permission = 0;     ///< "permission"
    int rating = 0;            ///< "rating"

    void parse(const QJsonObject &object) override;
};

/// The reply envelope around a record of type T.
template <class T>
struct ApiResponse : Parseable
{
    QString code;    ///< "code", a word such as "LOGIN_SUCCESS"
    QString message; ///< "message", human-readable
    T data;          ///< "data"; T's defaults unless that key holds an object

    void parse(const QJsonObject &object) override
    {
        code = object.value(QLatin1String("code")).toString();
        message = object.value(QLatin1String("message")).toString();
        data = T();
        const QJsonValue payload = object.value(QLatin1String("data"));
        if (payload.isObject())
            data.parse(payload.toObject());
    }
};

} // namespace tarvo::model
