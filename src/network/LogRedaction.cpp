#include "network/LogRedaction.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tarvo::network {

namespace {

constexpr qsizetype longestLoggedBody = 4096;

QString mask()
{
    return QStringLiteral("******");
}

bool isSecret(const QString &key)
{
    return key == QLatin1String("token") || key == QLatin1String("flush_token") || key == QLatin1String("password");
}

// The recursion is bounded: the JSON reader refuses documents nested deeper than 1024.
QJsonValue redacted(const QJsonValue &value)
{
    if (value.isArray()) {
        QJsonArray array;
        const QJsonArray original = value.toArray();
        for (const QJsonValue &item : original)
            array.append(redacted(item));
        return array;
    }
    if (value.isObject()) {
        QJsonObject object;
        const QJsonObject original = value.toObject();
        for (auto it = original.begin(); it != original.end(); ++it)
            object.insert(it.key(), isSecret(it.key()) ? QJsonValue(mask()) : redacted(it.value()));
        return object;
    }
    return value;
}

} // namespace

QString redactedBody(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (document.isNull())
        return QStringLiteral("<%1 bytes, not JSON>").arg(body.size());
    const QJsonDocument masked = document.isArray() ? QJsonDocument(redacted(document.array()).toArray())
                                                    : QJsonDocument(redacted(document.object()).toObject());
    return QString::fromUtf8(masked.toJson(QJsonDocument::Compact)).left(longestLoggedBody);
}

QString redactedText(const QString &text, const QStringList &secrets)
{
    QString result = text;
    for (const QString &secret : secrets) {
        if (!secret.isEmpty())
            result.replace(secret, mask());
    }
    result.replace(QLatin1Char('\n'), QLatin1Char(' '));
    result.replace(QLatin1Char('\r'), QLatin1Char(' '));
    return result;
}

} // namespace tarvo::network
