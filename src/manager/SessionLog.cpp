#include "manager/SessionLog.h"

#include "Logging.h"
#include "common/Clock.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QStringList>

namespace tarvo::manager {

namespace {

constexpr int keptFiles = 10;
constexpr int flushIntervalMs = 1000;
constexpr int identifierLength = 3;
const QLatin1StringView mask("******");

/// The index of the password among the fields of a login line; -1 for any other line.
int passwordField(const QString &line)
{
    if (line.startsWith(QLatin1StringView("#AP")))
        return 3;
    return line.startsWith(QLatin1StringView("#AA")) ? 4 : -1;
}

QStringView withoutLineEnd(QStringView line)
{
    while (line.endsWith(QLatin1Char('\n')) || line.endsWith(QLatin1Char('\r')))
        line.chop(1);
    return line;
}

} // namespace

QString withoutSecret(const QString &line, const QString &secret)
{
    if (passwordField(line) < 0 || secret.isEmpty())
        return line;
    QString rest = line.mid(identifierLength);
    rest.replace(secret, mask);
    // A sent line is Latin-1 read back as UTF-8, and the secret in it went the same way.
    rest.replace(QString::fromUtf8(secret.toLatin1()), mask);
    return line.left(identifierLength) + rest;
}

QString maskedLoginLine(const QString &line, const QString &secret)
{
    const int place = passwordField(line);
    if (place < 0)
        return line;
    QStringList fields = withoutSecret(withoutLineEnd(line).toString(), secret).split(QLatin1Char(':'));
    if (place < fields.size())
        fields[place] = mask;
    return fields.join(QLatin1Char(':'));
}

SessionLog::SessionLog(const QString &folder, const common::Clock &clock) : m_clock(clock)
{
    m_flushTimer.setObjectName(QStringLiteral("flushTimer"));
    m_flushTimer.setInterval(flushIntervalMs);
    QObject::connect(&m_flushTimer, &QTimer::timeout, &m_flushTimer, [this] { m_stream.flush(); });
    if (!QDir().mkpath(folder)) {
        qCritical().noquote() << "Unable to create directory" << folder;
        return;
    }
    logging::removeOldFiles(folder, keptFiles);
    const QString name = QStringLiteral("network-%1.log").arg(logging::fileTimeStamp(clock.wallMs()));
    m_file.setFileName(QDir(folder).filePath(name));
    // Appending, so that a second session within the same second doesn't wipe the first one's log.
    if (m_file.open(QIODevice::WriteOnly | QIODevice::Append))
        m_stream.setDevice(&m_file);
}

SessionLog::~SessionLog()
{
    stopFlushing();
}

void SessionLog::writeSent(const QString &line, const QString &secret)
{
    write(QLatin1StringView(">>>"), maskedLoginLine(line, secret));
}

void SessionLog::writeReceived(const QString &line, const QString &secret)
{
    write(QLatin1StringView("<<<"), withoutSecret(line, secret));
}

void SessionLog::write(QLatin1StringView arrow, const QString &line)
{
    if (!isOpen())
        return;
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(m_clock.wallMs(), Qt::UTC);
    m_stream << QLatin1Char('[') << now.toString(u"HH:mm:ss.zzz") << QLatin1StringView("] ") << arrow
             << QLatin1Char(' ') << withoutLineEnd(line) << QLatin1Char('\n');
}

void SessionLog::startFlushing()
{
    if (isOpen() && !m_flushTimer.isActive())
        m_flushTimer.start();
}

void SessionLog::stopFlushing()
{
    m_flushTimer.stop();
    if (isOpen())
        m_stream.flush();
}

} // namespace tarvo::manager
