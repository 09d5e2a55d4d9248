#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QSettings>

/// The form of config.ini: the INI form of QSettings, with a reader and a writer of our own. QSettings' own reader
/// builds any object that a value names, so that a few crafted bytes in the file would end the program at every start.
/// Here a value is text, bytes, nothing, or a list of them. Anything else that begins with "@" is plain text.
///
/// QSettings still keeps the values, locks and replaces the file and sees what another program writes into it.
namespace tarvo::ini {

/// The format for a QSettings object. Registered at the first call.
QSettings::Format format();

/// Every value of an INI text, by "Section/key". A line that is no INI is left out; of a key that stands twice the last
/// one counts. Never fails.
QSettings::SettingsMap parse(QByteArrayView text);

/// The values as QSettings writes them: sections and keys sorted, UTF-8, lines end with "\n".
QByteArray print(const QSettings::SettingsMap &values);

} // namespace tarvo::ini
