#pragma once

#include <QFile>
#include <QString>
#include <QTextStream>
#include <QTimer>

namespace tarvo::common {
class Clock;
}

namespace tarvo::manager {

/// The raw FSD traffic of one signed-in session, in a file of its own, "network-<UTC time>.log". All connections of the
/// session write into it. A file that has grown to 64 MB is followed by the next one. At most 10 earlier files stay.
///
/// A session never fails for its log: what can't be opened at its beginning is lost without further report. A next file
/// is tried each second until it opens, and of what a full disk doesn't take up to 16 KB wait while the rest is lost:
/// both are told to the program's log once.
class SessionLog
{
public:
    static constexpr qint64 longestFile = 64'000'000; ///< bytes

    /// Makes `folder`, deletes old logs and opens the new one. `fileLimit` in bytes. A file may grow beyond it by what
    /// waits for the disk, and until the second is over, which its name tells.
    SessionLog(const QString &folder, const common::Clock &clock, qint64 fileLimit = longestFile);
    ~SessionLog();
    SessionLog(const SessionLog &) = delete;
    SessionLog &operator=(const SessionLog &) = delete;

    bool isOpen() const { return m_file.isOpen(); }
    QString path() const { return m_file.fileName(); }

    /// Writes "[HH:mm:ss.zzz] >>> line". A login line has its password field masked, and `secret` wherever it stands.
    void writeSent(const QString &line, const QString &secret);
    /// Writes "[HH:mm:ss.zzz] <<< line". `secret` is masked as by withoutSecret().
    void writeReceived(const QString &line, const QString &secret);

    /// While a connection lasts, what is written reaches the disk every second.
    void startFlushing();
    /// Brings all to the disk and stops the timer.
    void stopFlushing();

private:
    bool openNext();
    void flush();
    void tellLoss();
    QString nextPath() const;
    void write(QLatin1StringView arrow, const QString &line);

    QString m_folder;
    const common::Clock &m_clock;
    qint64 m_fileLimit;
    QFile m_file;
    QTextStream m_stream;
    QTimer m_flushTimer;
    bool m_lossTold = false;
};

/// `line` with "******" in place of the password: by its place, field 3 of "#AP" and field 4 of "#AA" counted from 0,
/// and wherever the non-empty `secret` stands in such a line. Other lines come back as they are.
QString maskedLoginLine(const QString &line, const QString &secret);

/// `text` with "******" wherever the non-empty `secret` stands behind the beginning of an "#AP" or "#AA" line, whether
/// `text` is that line or quotes it; one as long as a token wherever it stands. Another text comes back as it is;
/// "#APPROACH" in it is a word.
QString withoutSecret(const QString &text, const QString &secret);

/// The message of a server's error, `secret` masked when the message or its parameter quotes a login line.
QString errorWithoutSecret(const QString &parameter, const QString &message, const QString &secret);

/// `error` with "******" wherever the non-empty `secret` stands in the raw packet that it quotes: a server may send the
/// login line back, too short to be read as one.
QString withoutSecretInPacket(const QString &error, const QString &secret);

} // namespace tarvo::manager
