#pragma once

#include <QJsonObject>

namespace tarvo::model {
struct RatingList;
struct User;
struct UserHistory;
} // namespace tarvo::model

namespace tarvo::practice {

// The account records as the service writes them.

QJsonObject toJson(const model::User &user);
QJsonObject toJson(const model::UserHistory &history);
QJsonObject toJson(const model::RatingList &ratings);
QJsonObject profileJson(const model::User &user);

} // namespace tarvo::practice
