#pragma once

#include <QSettings>
#include <QString>

namespace tarvo {

/// The last good copy of config.ini, "config.ini.bak" beside it. Nobody but the user may read it. Where it can't be
/// written the copy before it stays; that is no error.
class ConfigCopy
{
public:
    explicit ConfigCopy(const QString &configPath) : m_configPath(configPath) {}

    /// What the copy holds; empty without a copy.
    QSettings::SettingsMap values() const;
    /// What can still be read of a damaged file; empty without one.
    QSettings::SettingsMap damagedValues() const;
    /// Copies config.ini as it is now, unless it is empty.
    void take() const;
    /// Empties one value in the copy, and removes a damaged file, which may hold it too.
    void forget(const QString &key) const;
    /// Keeps config.ini as it is now as "config.ini.damaged", in place of an earlier one.
    void keepDamagedFile() const;

private:
    QString path() const { return m_configPath + QStringLiteral(".bak"); }
    QString damagedPath() const { return m_configPath + QStringLiteral(".damaged"); }

    QString m_configPath;
};

} // namespace tarvo
