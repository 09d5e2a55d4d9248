#pragma once

#include <QByteArrayView>
#include <QLatin1StringView>
#include <QString>
#include <QStringList>

namespace tarvo {
class StateFile;
}

namespace tarvo::lastwords {

/// What a line ends with that was too long to be kept whole.
constexpr QLatin1StringView cutMark(" [cut]");

/// From here on a crash of any thread, an exception that nobody catches and a fatal message leave
/// "crash-<UTC time>.txt" in `folder`: version, what happened, the thread, the last lines of the log and the calls that
/// led there. The process then ends as it would have without. Once for each process.
void install(const QString &folder, const QString &version);

/// Keeps a line of the log among the last 50, for the crash file. One thread at a time.
void note(QByteArrayView line);

/// The crash files in `folder` that are newer than the one named `lastTold`, oldest first. One from after `now`, ms
/// since the epoch, waits until then: a clock was ahead. Other files don't count.
QStringList filesAfter(const QString &folder, const QString &lastTold, qint64 now);

/// Logs a warning for each crash file of an earlier run, once.
void tellOfEarlierCrashes(const QString &folder, StateFile &state);

} // namespace tarvo::lastwords
