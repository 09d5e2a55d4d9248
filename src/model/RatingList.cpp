#include "model/RatingList.h"

#include <QJsonArray>
#include <QJsonObject>

namespace tarvo::model {

namespace {

QList<RatingEntry> rows(const QJsonValue &value)
{
    QList<RatingEntry> list;
    const QJsonArray array = value.toArray();
    for (const auto &item : array) {
        if (!item.isObject())
            continue;
        const QJsonObject object = item.toObject();
        list.append({.cid = object.value(QLatin1String("cid")).toInteger(0),
                     .username = object.value(QLatin1String("username")).toString(),
                     .avatarUrl = object.value(QLatin1String("avatar_url")).toString(),
                     .time = object.value(QLatin1String("time")).toInteger(0)});
    }
    return list;
}

} // namespace

RatingList RatingList::parse(const QJsonValue &data)
{
    if (data.isArray())
        return {.pilots = rows(data), .controllers = {}};
    return {.pilots = rows(data[QLatin1String("pilots")]), .controllers = rows(data[QLatin1String("controllers")])};
}

} // namespace tarvo::model
