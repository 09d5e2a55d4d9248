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
    const ConfigCopy copy(file.fileName());
    settings.copyValues = copy.values();
    settings.damagedValues = copy.damagedValues();
    if (!file.exists())
        return settings;
    settings.state = file.open(QIODevice::ReadOnly) ? StoredSettings::State::Read : StoredSettings::State::Unreadable;
    if (file.isOpen())
        settings.values = ini::parse(file.readAll());
    return settings;
}

QByteArrayList secretsOf(const StoredSettings &settings, const QByteArray &configSecret)
{
    constexpr qsizetype shortestCipher = 32; // salt and vector; a damaged value may be shorter and is no secret
    QByteArrayList secrets{configSecret};
    for (const config::AnyKey &anyKey : config::storedKeys) {
        const auto *key = std::get_if<StringKey>(&anyKey);
        if (!key || !key->isEncrypted)
            continue;
        for (const QSettings::SettingsMap &values : {settings.values, settings.copyValues, settings.damagedValues}) {
            const QString stored = values.value(QString::fromUtf8(key->key)).toString();
            if (stored.isEmpty() || secrets.contains(stored.toUtf8()))
                continue;
            const QString plain = cipher::decrypt(stored, configSecret);
            const QByteArray bytes = QByteArray::fromBase64(stored.toLatin1()); // however they are written
            secrets << stored.toUtf8() << plain.toUtf8() << common::onOneLine(plain).toUtf8()
                    << (bytes.size() >= shortestCipher ? bytes : QByteArray());
        }
    }
    secrets.removeAll(QByteArray());
    return secrets;
}

} // namespace tarvo::diagnosis
