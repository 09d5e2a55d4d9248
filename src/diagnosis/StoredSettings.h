#pragma once

#include "ConfigKey.h"

#include <QSettings>
#include <QString>
#include <QStringList>

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
    QSettings::SettingsMap values;     ///< of config.ini, by "Section/key"
    QSettings::SettingsMap copyValues; ///< of its last good copy, config.ini.bak

    /// The value as it is stored, or the key's default.
    QString text(const StringKey &key) const;
    int number(const IntKey &key) const;
};

StoredSettings readSettings(const QString &dataRoot);

/// All that must not leave this machine: the passwords and tokens of the settings and of their copy, as they are stored
/// and as they are, and the build's own secret. Deriving the cipher's key is slow on purpose: some 50 ms each.
QStringList secretsOf(const StoredSettings &settings, const QByteArray &configSecret);

} // namespace tarvo::diagnosis
