#include "StateFile.h"

#include "IniFormat.h"

#include <QDebug>
#include <QDir>

#include <utility>

namespace tarvo {

StateFile::StateFile(const QString &dataRoot)
    : m_settings(std::make_unique<QSettings>(QDir(dataRoot).filePath(QStringLiteral("state.ini")), ini::format()))
{
}

QString StateFile::get(const StringKey &key) const
{
    return m_settings->value(QString::fromUtf8(key.key), QString::fromUtf8(key.defaultValue)).toString();
}

bool StateFile::get(const BoolKey &key) const
{
    const QString text = m_settings->value(QString::fromUtf8(key.key)).toString();
    if (text == QLatin1String("true") || text == QLatin1String("false"))
        return text == QLatin1String("true");
    return key.defaultValue;
}

int StateFile::get(const IntKey &key) const
{
    bool isNumber = false;
    const int number = m_settings->value(QString::fromUtf8(key.key)).toString().toInt(&isNumber);
    return isNumber ? number : key.defaultValue;
}

void StateFile::set(const StringKey &key, const QString &value)
{
    if (get(key) != value)
        store(key.key, value);
}

void StateFile::set(const BoolKey &key, bool value)
{
    if (get(key) != value)
        store(key.key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

void StateFile::set(const IntKey &key, int value)
{
    if (get(key) != value)
        store(key.key, QString::number(value));
}

void StateFile::store(const char *key, const QString &value)
{
    m_settings->setValue(QString::fromUtf8(key), value);
    m_settings->sync();
    if (m_settings->status() != QSettings::NoError && !std::exchange(m_failureTold, true))
        qWarning("state.ini can't be written; what it was to remember may be lost");
}

} // namespace tarvo
