#pragma once

#include <QJsonValue>
#include <QList>
#include <QString>

namespace tarvo::model {

/// One row of the leaderboard.
struct RatingEntry
{
    qint64 cid = 0;    ///< "cid"
    QString username;  ///< "username"
    QString avatarUrl; ///< "avatar_url"
    qint64 time = 0;   ///< "time", seconds

    bool operator==(const RatingEntry &) const = default;
};

/// The leaderboard: pilots and controllers by time online, best first.
struct RatingList
{
    QList<RatingEntry> pilots;
    QList<RatingEntry> controllers;

    /// Reads the reply's "data". An object has the arrays "pilots" and "controllers"; a bare array counts as pilots.
    /// Unknown keys are ignored, rows that are no objects are dropped.
    static RatingList parse(const QJsonValue &data);

    bool operator==(const RatingList &) const = default;
};

} // namespace tarvo::model
