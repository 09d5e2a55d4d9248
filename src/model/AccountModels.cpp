#include "model/AccountModels.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QVariant>

#include <limits>

namespace tarvo::model {

namespace {

QString text(const QJsonObject &object, QLatin1String key)
{
    return object.value(key).toString();
}

bool flag(const QJsonObject &object, QLatin1String key)
{
    return object.value(key).toBool(false);
}

/// A whole number. Text is not converted, and neither is a number that is no whole one or needs more than 64 bits.
qint64 integer(const QJsonObject &object, QLatin1String key)
{
    return object.value(key).toInteger(0);
}

int smallInteger(const QJsonObject &object, QLatin1String key)
{
    const qint64 value = integer(object, key);
    const bool fits = value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(value) : 0;
}

/// A total or a duration. A fraction is rounded; what lies outside 64 bits is 0. Text is not converted.
qint64 bigNumber(const QJsonObject &object, QLatin1String key)
{
    const QVariant number = object.value(key).toVariant();
    if (number.typeId() == QMetaType::LongLong)
        return number.toLongLong();
    constexpr double limit = 9223372036854775808.0; // 2^63, where a conversion would leave defined ground
    const bool fits = number.typeId() == QMetaType::Double && number.toDouble() < limit && number.toDouble() >= -limit;
    return fits ? number.toLongLong() : 0;
}

/// An ISO date and time; `fallback` when absent or unreadable.
QDateTime dateTime(const QJsonObject &object, QLatin1String key, const QDateTime &fallback)
{
    const QDateTime read = QDateTime::fromString(text(object, key), Qt::ISODateWithMs);
    return read.isValid() ? read : fallback;
}

QList<UserHistoryEntry> entries(const QJsonObject &object, QLatin1String key)
{
    QList<UserHistoryEntry> list;
    const QJsonArray array = object.value(key).toArray();
    for (const auto &item : array) {
        if (!item.isObject())
            continue;
        UserHistoryEntry entry;
        entry.parse(item.toObject());
        list.append(entry);
    }
    return list;
}

} // namespace

void User::parse(const QJsonObject &object)
{
    const QDateTime epoch = QDateTime::fromSecsSinceEpoch(0, Qt::UTC);
    id = integer(object, QLatin1String("id"));
    username = text(object, QLatin1String("username"));
    email = text(object, QLatin1String("email"));
    cid = integer(object, QLatin1String("cid"));
    avatarUrl = text(object, QLatin1String("avatar_url"));
    qq = integer(object, QLatin1String("qq"));
    rating = smallInteger(object, QLatin1String("rating"));
    guest = flag(object, QLatin1String("guest"));
    underMonitor = flag(object, QLatin1String("under_monitor"));
    underSolo = flag(object, QLatin1String("under_solo"));
    tier2 = flag(object, QLatin1String("tier2"));
    soloUntil = dateTime(object, QLatin1String("solo_until"), epoch);
    permission = integer(object, QLatin1String("permission"));
    totalPilotTime = integer(object, QLatin1String("total_pilot_time"));
    totalAtcTime = integer(object, QLatin1String("total_atc_time"));
    registerTime = dateTime(object, QLatin1String("register_time"), epoch);
}

void AuthData::parse(const QJsonObject &object)
{
    token = text(object, QLatin1String("token"));
    flushToken = text(object, QLatin1String("flush_token"));
    user.parse(object.value(QLatin1String("user")).toObject());
}

void FSDToken::parse(const QJsonObject &object)
{
    token = text(object, QLatin1String("token"));
    success = flag(object, QLatin1String("success"));
    errorMsg = text(object, QLatin1String("error_msg"));
}

void UserHistoryEntry::parse(const QJsonObject &object)
{
    callsign = text(object, QLatin1String("callsign"));
    startTime = dateTime(object, QLatin1String("start_time"), QDateTime());
    endTime = dateTime(object, QLatin1String("end_time"), QDateTime());
    onlineTime = bigNumber(object, QLatin1String("online_time"));
}

void UserHistory::parse(const QJsonObject &object)
{
    pilots = entries(object, QLatin1String("pilots"));
    controllers = entries(object, QLatin1String("controllers"));
    totalPilotTime = bigNumber(object, QLatin1String("total_pilot_time"));
    totalAtcTime = bigNumber(object, QLatin1String("total_atc_time"));
}

void UserProfile::parse(const QJsonObject &object)
{
    totalPilotTime = bigNumber(object, QLatin1String("total_pilot_time"));
    totalAtcTime = bigNumber(object, QLatin1String("total_atc_time"));
    permission = bigNumber(object, QLatin1String("permission"));
    rating = smallInteger(object, QLatin1String("rating"));
}

} // namespace tarvo::model
