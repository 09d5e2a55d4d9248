#pragma once

#include <QByteArray>
#include <QSettings>
#include <QStringList>

class QIODevice;

namespace tarvo::diagnosis {

/// config.ini for strangers: every value that isn't secret, in the form of the file; "******" for one that is, and for
/// one that no setting is known for.
QByteArray maskedSettings(const QSettings::SettingsMap &values, const QStringList &secrets);

/// The lines of a log, each without the secrets in whichever form. Of a log longer than `most` bytes only the last
/// lines, below one that says so.
QByteArray maskedLog(QIODevice &log, const QStringList &secrets, qint64 most);

} // namespace tarvo::diagnosis
