#include "Logging.h"

#include "LastWords.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace tarvo::logging {

namespace {

constexpr int oldLogsKept = 9;

struct LogState
{
    QFile file;
    QMutex mutex;
    int lost = 0; ///< lines, since the file took the last one
};

/// Never destroyed: threads of libraries and the destructors of singletons may log until the very end.
LogState &state()
{
    static LogState *const immortal = std::make_unique<LogState>().release();
    return *immortal;
}

/// True in the thread that is opening a log. What Qt has to say meanwhile would wait for the lock for ever;
/// with no file open the line is lost anyway.
thread_local bool isOpening = false;

QLatin1String levelWord(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QLatin1String("DEBUG");
    case QtInfoMsg:
        return QLatin1String("INFO ");
    case QtWarningMsg:
        return QLatin1String("WARN ");
    case QtCriticalMsg:
        return QLatin1String("ERROR");
    case QtFatalMsg:
        break;
    }
    return QLatin1String("FATAL");
}

QString sourceFile(const char *path)
{
    if (path == nullptr)
        return QStringLiteral("unknown");
    const QString file = QString::fromUtf8(path);
    return file.sliced(std::max(file.lastIndexOf(u'/'), file.lastIndexOf(u'\\')) + 1);
}

/// False when the disk is full and so much waits already that this can't wait as well.
bool write(LogState &log, const QByteArray &line)
{
    const bool taken = log.file.write(line + '\n') >= 0;
    flush(log.file); // on disk before the caller goes on
    return taken;
}

QByteArray lossLine(int lines)
{
    const QString text = QStringLiteral("%1 lines were lost here: the disk was full").arg(lines);
    return formatLine(QDateTime::currentDateTime(), QtWarningMsg, {__FILE__, __LINE__, nullptr, nullptr}, text)
        .toUtf8();
}

void append(const QString &line)
{
    LogState &log = state();
    const QMutexLocker lock(&log.mutex);
    const QByteArray bytes = line.toUtf8();
    lastwords::note(bytes);
    if (!log.file.isOpen())
        return;
    if (log.lost > 0 && write(log, lossLine(log.lost)))
        log.lost = 0;
    if (!write(log, bytes))
        ++log.lost;
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (isOpening)
        return;
    append(formatLine(QDateTime::currentDateTime(), type, context, message));
    if (type == QtFatalMsg)
        std::abort(); // as Qt would, but on Windows too in a way that leaves a crash file
}

/// False when the file can't be opened; true also when there is no folder and so no log.
bool reopen(LogState &log, const QString &path)
{
    if (log.file.isOpen())
        log.file.close();
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder))
        return true;
    removeOldFiles(folder, oldLogsKept);
    log.lost = 0;
    log.file.setFileName(path);
    return log.file.open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::Append);
}

} // namespace

void installHandler()
{
    qInstallMessageHandler(handleMessage);
}

void openLogFile(const QString &path)
{
    bool opened = false;
    {
        LogState &log = state();
        const QMutexLocker lock(&log.mutex);
        isOpening = true;
        opened = reopen(log, path);
        isOpening = false;
    }
    if (opened)
        return;
    // The handler has no file to write the last words into.
    std::fprintf(stderr, "Failed to open log file for writing: %s\n", qPrintable(QDir::toNativeSeparators(path)));
    qFatal("Failed to open log file for writing"); // without the lock, because the handler takes it
}

QString formatLine(const QDateTime &time, QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    return QStringLiteral("%1 | %2 | %3:%4 - %5")
        .arg(time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")), levelWord(type), sourceFile(context.file),
             QString::number(context.line), message);
}

bool flush(QFileDevice &file)
{
    while (file.bytesToWrite() > 0) {
        if (!file.flush())
            return false;
    }
    return true;
}

void removeOldFiles(const QString &folder, int keep)
{
    if (folder.isEmpty()) // would mean the working directory
        return;
    QFileInfoList files = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Unsorted);
    const auto isNewer = [](const QFileInfo &a, const QFileInfo &b) {
        const QDateTime timeA = a.lastModified();
        const QDateTime timeB = b.lastModified();
        // Names carry the start time, so they decide between files of the same moment.
        return timeA != timeB ? timeA > timeB : a.fileName() > b.fileName();
    };
    std::sort(files.begin(), files.end(), isNewer);
    for (qsizetype i = files.size(); i > keep; --i)
        QFile::remove(files.at(i - 1).filePath());
}

QString fileTimeStamp(qint64 wallMs)
{
    return QDateTime::fromMSecsSinceEpoch(wallMs, Qt::UTC).toString(QStringLiteral("yyyy-MM-dd_hh-mm-ss"));
}

} // namespace tarvo::logging
