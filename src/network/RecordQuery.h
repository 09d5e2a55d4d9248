#pragma once

#include "model/AccountModels.h"
#include "model/RatingList.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace tarvo::network {

/// One of the account service's records that is read with the JWT: where it is and how its reply is judged.
struct RecordQuery
{
    const char *logName;      ///< names the request in the log
    QString path;             ///< below the base URL
    QString name;             ///< names the record in error texts
    QStringList successCodes; ///< reply codes that mean success
    QString fallbackError;    ///< for a failure without the service's own message

    static RecordQuery userHistory();
    static RecordQuery userProfile();
    static RecordQuery leaderboard();

    bool isSuccess(const QString &code) const { return successCodes.contains(code); }
    QString missingTokenText() const;
};

/// The reply to a RecordQuery.
template <class T>
struct RecordReply
{
    QString code;
    QString message;
    T record;

    static RecordReply parse(const QJsonObject &object)
    {
        model::ApiResponse<T> response;
        response.parse(object);
        return {response.code, response.message, response.data};
    }
};

/// The leaderboard's "data" may be an array, which the common envelope doesn't read.
template <>
inline RecordReply<model::RatingList> RecordReply<model::RatingList>::parse(const QJsonObject &object)
{
    return {object.value(QLatin1String("code")).toString(), object.value(QLatin1String("message")).toString(),
            model::RatingList::parse(object.value(QLatin1String("data")))};
}

} // namespace tarvo::network
