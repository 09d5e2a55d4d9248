#include "IniFormat.h"

#include <QIODevice>
#include <QOperatingSystemVersion>

namespace tarvo::ini {

namespace {

bool read(QIODevice &device, QSettings::SettingsMap &values)
{
    values = parse(device.readAll());
    return true;
}

bool write(QIODevice &device, const QSettings::SettingsMap &values)
{
    device.setTextModeEnabled(true); // the line ends of the system
    const QByteArray text = print(values);
    return device.write(text) == text.size();
}

} // namespace

QSettings::Format format()
{
    // As QSettings compares the keys of an INI file.
    constexpr Qt::CaseSensitivity keys = QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows
                                             ? Qt::CaseInsensitive
                                             : Qt::CaseSensitive;
    static const QSettings::Format registered = QSettings::registerFormat(QStringLiteral("ini"), read, write, keys);
    return registered;
}

} // namespace tarvo::ini
