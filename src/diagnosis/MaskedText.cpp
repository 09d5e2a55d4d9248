#include "diagnosis/MaskedText.h"

#include "ConfigKey.h"
#include "IniFormat.h"
#include "common/SecretMask.h"

#include <QIODevice>

#include <algorithm>
#include <variant>

namespace tarvo::diagnosis {

namespace {

bool isSecret(const config::AnyKey &anyKey)
{
    const auto *key = std::get_if<StringKey>(&anyKey);
    return key && key->isEncrypted;
}

/// A key that is misspelt or damaged may be that of a password.
bool mayBeShown(const QString &name)
{
    return std::any_of(config::storedKeys.begin(), config::storedKeys.end(), [&](const config::AnyKey &anyKey) {
        return !isSecret(anyKey) &&
               std::visit([&](const auto &key) { return name == QLatin1StringView(key.key); }, anyKey);
    });
}

QVariant masked(const QString &name, const QVariant &value, const QStringList &secrets)
{
    const QStringList texts = value.toStringList(); // of a single value a list of one
    if (!mayBeShown(name))
        return texts.join(QString()).isEmpty() ? QString() : QStringLiteral("******");
    QStringList shown;
    for (const QString &text : texts)
        shown << common::withoutSecrets(text, secrets);
    return shown.size() == 1 ? QVariant(shown.first()) : QVariant(shown);
}

} // namespace

QByteArray maskedSettings(const QSettings::SettingsMap &values, const QStringList &secrets)
{
    QSettings::SettingsMap shown;
    for (auto it = values.begin(); it != values.end(); ++it)
        shown.insert(common::withoutSecrets(it.key(), secrets), masked(it.key(), it.value(), secrets));
    return ini::print(shown);
}

QByteArray maskedLog(QIODevice &log, const QStringList &secrets, qint64 most)
{
    QByteArray result;
    if (const qint64 before = log.size() - most; before > 0) {
        log.seek(before);
        log.readLine(); // a part of one may hold a part of a secret, which nobody would find
        result = "[" + QByteArray::number(log.pos()) + " bytes before this are left out]\n";
    }
    while (!log.atEnd()) {
        const QString line = QString::fromUtf8(log.readLine());
        result += common::withoutSecrets(line, secrets).toUtf8();
        if (!result.endsWith('\n'))
            result += '\n'; // the mask or a limit of length took it
    }
    return result;
}

} // namespace tarvo::diagnosis
