#include "manager/SessionLog.h"

#include "Logging.h"
#include "common/Clock.h"
#include "manager/OneLine.h"

#include <QDebug>
#include <QDir>
#include <QRegularExpression>
#include <QStringList>

#include <array>
#include <utility>

namespace tarvo::manager {

namespace {

constexpr int keptFiles = 10;
constexpr int flushIntervalMs = 1000;
constexpr int identifierLength = 3;
constexpr qsizetype shortestToken = 32; ///< characters; a shorter secret may be a word of a text
const QLatin1StringView mask("******");

/// The index of the password among the fields of a login line; -1 for any other line.
int passwordField(const QString &line)
{
    if (line.startsWith(QLatin1StringView("#AP")))
        return 3;
    return line.startsWith(QLatin1StringView("#AA")) ? 4 : -1;
}

/// Where a login line begins: at the beginning of `text`, or where `text` quotes one; -1 when none does. What follows
/// the identifier within a text is a word ("#APPROACH"), unless it has a digit, as most callsigns have, or fields
/// follow.
qsizetype loginLineIn(const QString &text)
{
    static const QRegularExpression quoted(
        QStringLiteral("#A[AP](?:(?![A-Za-z0-9])|[A-Za-z]*[0-9]|[A-Za-z]+(?::(?=\\S)|\\s+SERVER\\b))"));
    if (!text.contains(QLatin1Char('#'))) // nearly all lines are positions
        return -1;
    return passwordField(text) >= 0 ? 0 : text.indexOf(quoted);
}

QStringView withoutLineEnd(QStringView line)
{
    while (line.endsWith(QLatin1Char('\n')) || line.endsWith(QLatin1Char('\r')))
        line.chop(1);
    return line;
}

/// "HH:mm:ss.zzz", UTC, with the closing zero. Every line of the traffic bears one: Qt's own formatting would
/// cost as much as all the rest of the line.
std::array<char, 13> timeOfDay(qint64 wallMs)
{
    constexpr qint64 msOfDay = 86'400'000;
    const qint64 ms = (wallMs % msOfDay + msOfDay) % msOfDay;
    std::array<char, 13> text{"00:00:00.000"};
    const auto put = [&text](size_t place, qint64 value, qint64 firstDigit) {
        for (qint64 unit = firstDigit; unit > 0; unit /= 10)
            text[place++] = static_cast<char>('0' + value / unit % 10);
    };
    put(0, ms / 3'600'000, 10);
    put(3, ms / 60'000 % 60, 10);
    put(6, ms / 1000 % 60, 10);
    put(9, ms % 1000, 100);
    return text;
}

/// How a secret may stand in a line: as it was typed, as it is sent, as the server sends it back, and as the line that
/// is sent is told (Latin-1 read as UTF-8).
QStringList formsOf(const QString &secret)
{
    const QByteArray sent = onOneLine(secret).toLatin1();
    QStringList forms{secret, onOneLine(secret), QString::fromLatin1(sent), QString::fromUtf8(sent)};
    forms.removeDuplicates();
    return forms;
}

QString masked(QString text, const QString &secret)
{
    if (secret.isEmpty())
        return text;
    for (const QString &form : formsOf(secret))
        text.replace(form, mask);
    return text;
}

} // namespace

QString withoutSecret(const QString &text, const QString &secret)
{
    if (secret.size() >= shortestToken && text.size() >= secret.size()) // nearly all lines are too short
        return masked(text, secret);
    const qsizetype login = loginLineIn(text);
    if (login < 0)
        return text;
    const qsizetype behind = login + identifierLength;
    return text.left(behind) + masked(text.mid(behind), secret);
}

QString errorWithoutSecret(const QString &parameter, const QString &message, const QString &secret)
{
    // The error's fields are what the wire made of them: a login line that is quoted has been cut at its colons.
    return loginLineIn(parameter) < 0 ? withoutSecret(message, secret) : masked(message, secret);
}

QString withoutSecretInPacket(const QString &error, const QString &secret)
{
    // Only what the server sent: a mask in the client's own words would give away a secret that is one of them.
    const qsizetype packet = error.indexOf(QLatin1StringView("(Raw packet: "));
    return packet < 0 ? error : error.left(packet) + masked(error.mid(packet), secret);
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

SessionLog::SessionLog(const QString &folder, const common::Clock &clock, qint64 fileLimit)
    : m_folder(folder), m_clock(clock), m_fileLimit(fileLimit)
{
    m_flushTimer.setObjectName(QStringLiteral("flushTimer"));
    m_flushTimer.setInterval(flushIntervalMs);
    QObject::connect(&m_flushTimer, &QTimer::timeout, &m_flushTimer, [this] { flush(); });
    if (QDir().mkpath(folder))
        (void)openNext();
    else
        qCritical().noquote() << "Unable to create directory" << folder;
}

QString SessionLog::nextPath() const
{
    return QDir(m_folder).filePath(QStringLiteral("network-%1.log").arg(logging::fileTimeStamp(m_clock.wallMs())));
}

bool SessionLog::openNext()
{
    m_stream.setDevice(nullptr); // brings what it holds to the disk
    m_file.close();
    logging::removeOldFiles(m_folder, keptFiles);
    m_file.setFileName(nextPath());
    // Appending, so that a second session within the same second doesn't wipe the first one's log.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Append))
        return false;
    m_stream.setDevice(&m_file);
    return true;
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
    if (m_file.pos() >= m_fileLimit && m_file.fileName() != nextPath() && !openNext()) {
        tellLoss();
        return;
    }
    const QStringView text = withoutLineEnd(line);
    m_stream << QLatin1Char('[') << QLatin1StringView(timeOfDay(m_clock.wallMs()).data()) << QLatin1StringView("] ")
             << arrow << QLatin1Char(' ');
    if (text.contains(QLatin1Char('\r')) || text.contains(QLatin1Char('\n')))
        m_stream << onOneLine(text.toString());
    else
        m_stream << text;
    m_stream << QLatin1Char('\n');
}

void SessionLog::startFlushing()
{
    const bool isWaiting = !isOpen() && m_lossTold; // for a next file that can be opened
    if (isWaiting)
        flush();
    if ((isOpen() || isWaiting) && !m_flushTimer.isActive())
        m_flushTimer.start();
}

void SessionLog::stopFlushing()
{
    m_flushTimer.stop();
    if (isOpen())
        flush();
}

/// A stream that failed once would keep all that follows in memory.
void SessionLog::flush()
{
    if (!isOpen()) { // the next file of a session; the first one isn't tried again
        (void)openNext();
        return;
    }
    m_stream.flush();
    const bool taken = m_stream.status() == QTextStream::Ok;
    m_stream.resetStatus();
    if (logging::flush(m_file) && taken)
        return;
    tellLoss();
}

void SessionLog::tellLoss()
{
    if (!std::exchange(m_lossTold, true))
        qWarning().noquote() << "Lines of the network log may be lost:" << m_file.errorString() << path();
}

} // namespace tarvo::manager
