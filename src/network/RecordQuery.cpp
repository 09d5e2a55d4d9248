#include "network/RecordQuery.h"

#include "network/ReplyTexts.h"

namespace tarvo::network {

RecordQuery RecordQuery::userHistory()
{
    return {.logName = "GetUserHistory",
            .path = QStringLiteral("/users/histories/self"),
            .name = QStringLiteral("user history"),
            .successCodes = {QStringLiteral("GET_USER_HISTORY")},
            .fallbackError = ReplyTexts::historyFailed()};
}

RecordQuery RecordQuery::userProfile()
{
    return {.logName = "GetUserProfile",
            .path = QStringLiteral("/users/profiles/self"),
            .name = QStringLiteral("user profile"),
            .successCodes = {QStringLiteral("GET_USER_PROFILE"), QStringLiteral("GET_PROFILE_SUCCESS"),
                             QStringLiteral("GET_CURRENT_PROFILE_SUCCESS")},
            .fallbackError = ReplyTexts::profileFailed()};
}

RecordQuery RecordQuery::leaderboard()
{
    return {.logName = "GetLeaderboard",
            .path = QStringLiteral("/server/rating"),
            .name = QStringLiteral("leaderboard"),
            .successCodes = {QStringLiteral("GET_TIME_RATING")},
            .fallbackError = QStringLiteral("Unknown error")};
}

QString RecordQuery::missingTokenText() const
{
    return QStringLiteral("No JWT token found, get %1 fail").arg(name);
}

} // namespace tarvo::network
