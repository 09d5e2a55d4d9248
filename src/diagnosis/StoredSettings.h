#pragma once

#include "ConfigKey.h"

#include <QByteArray>
#include <QSettings>
#include <QString>

namespace tarvo::diagnosis {

/// config.ini as it lies on the disk. AppConfig would mend it at once, and whoever looks for a fault wants to see it.
struct StoredSettings
{
    enum class State
    {
        Missing,
        Unreadable,
        Read
    };

    State state = State::Missing;
    QSettings::SettingsMap values;        ///< of config.ini, by "Section/key"
    QSettings::SettingsMap copyValues;    ///< of its last good copy, config.ini.bak
    QSettings::SettingsMap damagedValues; ///< what is left in config.ini.damaged

    /// The value as it is stored, or the key's default.
    QString text(const StringKey &key) const;
    int number(const IntKey &key) const;
};

StoredSettings readSettings(const QString &dataRoot);

/// All that must not leave this machine, for a SecretMask: the passwords and tokens of the settings, of their copy and
/// of a damaged file, as they are stored and as they are, and the build's own secret. Deriving the cipher's key is slow
/// on purpose: some 50 ms each.
QByteArrayList secretsOf(const StoredSettings &settings, const QByteArray &configSecret);

} // namespace tarvo::diagnosis
