#include "practice/replay/Recording.h"

#include <QRegularExpression>
#include <QStringList>
#include <QTime>

#include <algorithm>

namespace tarvo::practice {

namespace {

constexpr qint64 msOfDay = 86'400'000;

/// Makes one time line of times of day: each is the one nearest to the one before, of this day or a neighbouring one.
class Timeline
{
public:
    qint64 at(const QTime &timeOfDay)
    {
        const qint64 ms = timeOfDay.msecsSinceStartOfDay();
        if (!m_last)
            m_last = ms;
        constexpr qint64 half = msOfDay / 2;
        const qint64 step = (ms - *m_last % msOfDay + msOfDay + half) % msOfDay - half;
        *m_last += std::max<qint64>(step, 0);
        return *m_last;
    }

private:
    std::optional<qint64> m_last;
};

bool isLogin(const QString &line)
{
    return line.startsWith(QLatin1StringView("#AP")) || line.startsWith(QLatin1StringView("#AA"));
}

/// Puts the lines of a log into their connections.
class Sorter
{
public:
    void sent(qint64 ms, const QString &line)
    {
        if (!isLogin(line))
            return;
        m_login = Login{ms, line.section(QLatin1Char(':'), 0, 0).mid(3)};
        if (!m_recording.isEmpty() && !m_isLoggedIn)
            logIn();
    }
    void received(qint64 ms, const QString &line)
    {
        const bool greets = line.startsWith(QLatin1StringView("$DI"));
        if (greets || m_recording.isEmpty()) {
            m_recording.append(RecordedConnection());
            m_isLoggedIn = false;
        }
        if (!greets && m_recording.last().greeting.isEmpty() && !m_isLoggedIn) { // it begins in mid-flight
            m_isLoggedIn = true;
            m_loginMs = ms;
        }
        RecordedConnection &connection = m_recording.last();
        if (m_isLoggedIn)
            connection.lines.append({ms - m_loginMs, line});
        else
            connection.greeting.append({0, line});
        if (greets && m_login) // a client notes what it answers before what it has heard
            logIn();
    }
    Recording take() { return std::move(m_recording); }

private:
    struct Login
    {
        qint64 ms;
        QString callsign;
    };

    void logIn()
    {
        m_recording.last().callsign = m_login->callsign;
        m_loginMs = m_login->ms;
        m_isLoggedIn = true;
        m_login.reset();
    }

    Recording m_recording;
    std::optional<Login> m_login; ///< that belongs to no connection yet
    bool m_isLoggedIn = false;    ///< in the last connection
    qint64 m_loginMs = 0;         ///< there
};

/// How many characters of a line are its identifier.
qsizetype identifierLength(const QString &line)
{
    return line.startsWith(QLatin1Char('#')) || line.startsWith(QLatin1Char('$')) ? 3 : 1;
}

} // namespace

std::optional<Recording> readRecording(const QString &log)
{
    static const QRegularExpression form(QStringLiteral("^\\[(\\d\\d:\\d\\d:\\d\\d\\.\\d{3})\\] (>>>|<<<) (.+?)\\r?$"));
    Timeline timeline;
    Sorter sorter;
    for (const QString &logLine : log.split(QLatin1Char('\n'))) {
        const QRegularExpressionMatch match = form.match(logLine);
        const QTime time = QTime::fromString(match.captured(1), QStringLiteral("HH:mm:ss.zzz"));
        if (!time.isValid())
            continue;
        const qint64 ms = timeline.at(time);
        if (match.captured(2) == QLatin1StringView(">>>"))
            sorter.sent(ms, match.captured(3));
        else
            sorter.received(ms, match.captured(3));
    }
    const Recording recording = sorter.take();
    return recording.isEmpty() ? std::nullopt : std::optional(recording);
}

QString readdressed(const QString &line, const QString &recorded, const QString &actual)
{
    if (recorded.isEmpty() || recorded == actual)
        return line;
    const qsizetype identifier = identifierLength(line);
    QStringList fields = line.mid(identifier).split(QLatin1Char(':'));
    std::replace(fields.begin(), fields.end(), recorded, actual);
    return line.left(identifier) + fields.join(QLatin1Char(':'));
}

} // namespace tarvo::practice
