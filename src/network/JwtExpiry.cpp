#include "network/JwtExpiry.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <limits>

namespace tarvo::network {

namespace {
constexpr qint64 refreshLeadSeconds = 300;
constexpr qint64 expiresSoonSeconds = 60;
constexpr qint64 longestIntervalMs = 24LL * 24 * 3600 * 1000;
} // namespace

qint64 jwtExpiry(const QString &jwt)
{
    const QStringList parts = jwt.split(QLatin1Char('.'));
    if (parts.size() != 3)
        return 0;
    const QByteArray payload = QByteArray::fromBase64(parts.at(1).toUtf8(), QByteArray::Base64UrlEncoding);
    const QJsonValue exp = QJsonDocument::fromJson(payload).object().value(QLatin1String("exp"));
    return exp.toInteger(0);
}

qint64 refreshDelayMs(qint64 expiry, qint64 nowSeconds)
{
    if (expiry <= nowSeconds + refreshLeadSeconds) // also keeps the subtraction below from overflowing
        return 0;
    const qint64 seconds = expiry - nowSeconds - refreshLeadSeconds;
    return std::min(seconds, std::numeric_limits<qint64>::max() / 1000) * 1000;
}

int timerIntervalMs(qint64 delayMs)
{
    return static_cast<int>(std::min(delayMs, longestIntervalMs));
}

bool expiresSoon(qint64 expiry, qint64 nowSeconds)
{
    return expiry != 0 && expiry <= nowSeconds + expiresSoonSeconds;
}

} // namespace tarvo::network
