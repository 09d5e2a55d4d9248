#include "network/LogRedaction.h"

#include "common/SecretMask.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tarvo::network {

namespace {

constexpr qsizetype longestLogged = 4096;
constexpr qsizetype longestBody = 16 * 1024; ///< bytes; an honest reply has a few thousand

QString mask()
{
    return QStringLiteral("******");
}

bool isSecret(const QString &key)
{
    return key == QLatin1String("token") || key == QLatin1String("flush_token") || key == QLatin1String("password");
}

// The recursion is bounded: the JSON reader refuses documents nested deeper than 1024.
QJsonValue masked(const QJsonValue &value, const QStringList &secrets)
{
    if (value.isString())
        return common::withoutSecrets(value.toString(), secrets);
    if (value.isArray()) {
        QJsonArray array;
        const QJsonArray original = value.toArray();
        for (const auto &item : original)
            array.append(masked(item, secrets));
        return array;
    }
    if (value.isObject()) {
        QJsonObject object;
        const QJsonObject original = value.toObject();
        for (auto it = original.begin(); it != original.end(); ++it)
            object.insert(common::withoutSecrets(it.key(), secrets),
                          isSecret(it.key()) ? QJsonValue(mask()) : masked(it.value(), secrets));
        return object;
    }
    return value;
}

} // namespace

QString redactedBody(const QByteArray &body, const QStringList &secrets)
{
    if (body.size() > longestBody)
        return QStringLiteral("<%1 bytes>").arg(body.size());
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (document.isNull())
        return QStringLiteral("<%1 bytes, not JSON>").arg(body.size());
    const QJsonDocument shown = document.isArray()
                                    ? QJsonDocument(masked(QJsonValue(document.array()), secrets).toArray())
                                    : QJsonDocument(masked(QJsonValue(document.object()), secrets).toObject());
    return QString::fromUtf8(shown.toJson(QJsonDocument::Compact)).left(longestLogged);
}

QString redactedText(const QString &text, const QStringList &secrets)
{
    QString result = common::withoutSecrets(text, secrets).left(longestLogged); // a cut secret would not be found
    result.replace(QLatin1Char('\n'), QLatin1Char(' '));
    result.replace(QLatin1Char('\r'), QLatin1Char(' '));
    return result;
}

} // namespace tarvo::network
