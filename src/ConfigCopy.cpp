#include "ConfigCopy.h"

#include "IniFormat.h"
#include "Logging.h"

#include <QFile>
#include <QSaveFile>

namespace tarvo {

namespace {

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeForTheUser(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner); // before the password is in it
    file.write(bytes);
    if (logging::flush(file)) // QSaveFile overlooks a full disk where only closing brings the last bytes there
        file.commit();
}

} // namespace

QSettings::SettingsMap ConfigCopy::values() const
{
    return ini::parse(contentsOf(path()));
}

QSettings::SettingsMap ConfigCopy::damagedValues() const
{
    return ini::parse(contentsOf(damagedPath()));
}

void ConfigCopy::take() const
{
    const QByteArray now = contentsOf(m_configPath);
    if (!now.isEmpty() && now != contentsOf(path())) // a file that a full disk left empty is no good copy
        writeForTheUser(path(), now);
}

void ConfigCopy::forget(const QString &key) const
{
    QFile::remove(damagedPath());
    QSettings::SettingsMap copied = values();
    if (copied.value(key).toString().isEmpty())
        return;
    copied.insert(key, QString());
    writeForTheUser(path(), ini::print(copied));
}

void ConfigCopy::keepDamagedFile() const
{
    if (QFile::exists(m_configPath))
        writeForTheUser(damagedPath(), contentsOf(m_configPath));
}

} // namespace tarvo
