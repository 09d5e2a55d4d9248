#pragma once

#include <QString>
#include <QtGlobal>

class QDateTime;
class QFileDevice;

namespace tarvo::logging {

/// Installs the handler that formats every message of Qt and appends it to the log file. Messages that arrive
/// while no file is open are lost.
void installHandler();

/// Closes the log that is open, makes the folder, deletes old logs and opens `path` for appending. At most 9 old files
/// stay. If the folder can't be made there is no log and no report; if the file can't be opened the process ends with
/// the fatal message "Failed to open log file for writing", which names the file on standard error. Lines for which the
/// disk has no room wait, up to 16 KB of them; how many were lost is written when there is room again.
void openLogFile(const QString &path);

/// One line of the log without its line end: "time | LEVEL | file:line - message". `time` is local time.
QString formatLine(const QDateTime &time, QtMsgType type, const QMessageLogContext &context, const QString &message);

/// Brings what waits in `file` to the disk; false when not all of it finds room there. QFileDevice::flush() would do so
/// with the first block only, and there are more after a full disk.
bool flush(QFileDevice &file);

/// Deletes the oldest files of `folder` until at most `keep` are left. All files count, whatever their name.
/// A file that can't be deleted is ignored.
void removeOldFiles(const QString &folder, int keep);

/// "yyyy-MM-dd_hh-mm-ss" in UTC of `wallMs` (ms since the epoch), as log files are named.
QString fileTimeStamp(qint64 wallMs);

} // namespace tarvo::logging
