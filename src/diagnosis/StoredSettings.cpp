#include "diagnosis/StoredSettings.h"

#include "ConfigCipher.h"
#include "ConfigCopy.h"
#include "IniFormat.h"
#include "common/OneLine.h"

#include <QDir>
#include <QFile>

#include <variant>

namespace tarvo::diagnosis {

QString StoredSettings::text(const StringKey &key) const
{
    return values.value(QString::fromUtf8(key.key), QString::fromUtf8(key.defaultValue)).toString();
}

int StoredSettings::number(const IntKey &key) const
{
    return values.value(QString::fromUtf8(key.key), key.defaultValue).toString().toInt();
}

StoredSettings readSettings(const QString &dataRoot)
{
    QFile file(QDir(dataRoot).filePath(QStringLiteral("config.ini")));
    StoredSettings settings;
    settings.copyValues = ConfigCopy(file.fileName()).values();
    if (!file.exists())
        return settings;
    settings.state = file.open(QIODevice::ReadOnly) ? StoredSettings::State::Read : StoredSettings::State::Unreadable;
    if (file.isOpen())
        settings.values = ini::parse(file.readAll());
    return settings;
}

QStringList secretsOf(const StoredSettings &settings, const QByteArray &configSecret)
{
    QStringList secrets{QString::fromLatin1(configSecret.toHex()), QString::fromLatin1(configSecret.toBase64())};
    for (const config::AnyKey &anyKey : config::storedKeys) {
        const auto *key = std::get_if<StringKey>(&anyKey);
        if (!key || !key->isEncrypted)
            continue;
        for (const QSettings::SettingsMap &values : {settings.values, settings.copyValues}) {
            const QString stored = values.value(QString::fromUtf8(key->key)).toString();
            if (stored.isEmpty() || secrets.contains(stored))
                continue;
            const QString plain = cipher::decrypt(stored, configSecret);
            secrets << stored << plain << common::onOneLine(plain);
        }
    }
    secrets.removeAll(QString());
    secrets.removeDuplicates();
    return secrets;
}

} // namespace tarvo::diagnosis
