#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>

class QIODevice;

namespace tarvo::common {
class SecretMask;
}

namespace tarvo::diagnosis {

/// `text` without the secrets that the mask knows, and without what looks like one: a token, a password in a quoted
/// login line. Says so when it is too long and its end is left out.
QString maskedText(const QString &text, const common::SecretMask &mask);

/// config.ini for strangers: every value that isn't secret, in the form of the file; "******" for one that is, and for
/// one that no setting is known for.
QByteArray maskedSettings(const QSettings::SettingsMap &values, const common::SecretMask &mask);

/// The lines of a log, each as maskedText() has it, as far as the log goes at the call. Of a log longer than `most`
/// bytes only the last lines, below one that says so.
QByteArray maskedLog(QIODevice &log, const common::SecretMask &mask, qint64 most);

} // namespace tarvo::diagnosis
