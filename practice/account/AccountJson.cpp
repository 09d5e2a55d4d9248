#include "practice/account/AccountJson.h"

#include "model/AccountModels.h"
#include "model/RatingList.h"

#include <QJsonArray>

namespace tarvo::practice {

namespace {
QString iso(const QDateTime &time)
{
    return time.toUTC().toString(Qt::ISODate);
}

QJsonArray entriesJson(const QList<model::UserHistoryEntry> &entries)
{
    QJsonArray array;
    for (const model::UserHistoryEntry &entry : entries) {
        array.append(QJsonObject{{QStringLiteral("callsign"), entry.callsign},
                                 {QStringLiteral("start_time"), iso(entry.startTime)},
                                 {QStringLiteral("end_time"), iso(entry.endTime)},
                                 {QStringLiteral("online_time"), entry.onlineTime}});
    }
    return array;
}

QJsonArray ratingJson(const QList<model::RatingEntry> &entries)
{
    QJsonArray array;
    for (const model::RatingEntry &entry : entries) {
        array.append(QJsonObject{{QStringLiteral("cid"), entry.cid},
                                 {QStringLiteral("username"), entry.username},
                                 {QStringLiteral("avatar_url"), entry.avatarUrl},
                                 {QStringLiteral("time"), entry.time}});
    }
    return array;
}
} // namespace

QJsonObject toJson(const model::User &user)
{
    return {{QStringLiteral("id"), user.id},
            {QStringLiteral("username"), user.username},
            {QStringLiteral("email"), user.email},
            {QStringLiteral("cid"), user.cid},
            {QStringLiteral("avatar_url"), user.avatarUrl},
            {QStringLiteral("qq"), user.qq},
            {QStringLiteral("rating"), user.rating},
            {QStringLiteral("guest"), user.guest},
            {QStringLiteral("under_monitor"), user.underMonitor},
            {QStringLiteral("under_solo"), user.underSolo},
            {QStringLiteral("tier2"), user.tier2},
            {QStringLiteral("solo_until"), iso(user.soloUntil)},
            {QStringLiteral("permission"), user.permission},
            {QStringLiteral("total_pilot_time"), user.totalPilotTime},
            {QStringLiteral("total_atc_time"), user.totalAtcTime},
            {QStringLiteral("register_time"), iso(user.registerTime)}};
}

QJsonObject toJson(const model::UserHistory &history)
{
    return {{QStringLiteral("pilots"), entriesJson(history.pilots)},
            {QStringLiteral("controllers"), entriesJson(history.controllers)},
            {QStringLiteral("total_pilot_time"), history.totalPilotTime},
            {QStringLiteral("total_atc_time"), history.totalAtcTime}};
}

QJsonObject toJson(const model::RatingList &ratings)
{
    return {{QStringLiteral("pilots"), ratingJson(ratings.pilots)},
            {QStringLiteral("controllers"), ratingJson(ratings.controllers)}};
}

QJsonObject profileJson(const model::User &user)
{
    return {{QStringLiteral("total_pilot_time"), user.totalPilotTime},
            {QStringLiteral("total_atc_time"), user.totalAtcTime},
            {QStringLiteral("permission"), user.permission},
            {QStringLiteral("rating"), user.rating}};
}

} // namespace tarvo::practice
