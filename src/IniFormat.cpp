#include "IniFormat.h"

#include <QIODevice>

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
    // On Windows too, though there QSettings' own INI form is not: it would hand all keys to the writer in small
    // letters.
    static const QSettings::Format registered =
        QSettings::registerFormat(QStringLiteral("ini"), read, write, Qt::CaseSensitive);
    return registered;
}

} // namespace tarvo::ini
