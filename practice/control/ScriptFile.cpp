#include "practice/control/ScriptFile.h"

#include <QStringList>

#include <cmath>

namespace tarvo::practice {

namespace {
/// What is wrong with a line. Never leaves this file.
struct Malformed
{
    QString reason;
};

/// One word of a line: a key with its value, or a value alone.
struct Word
{
    QString key; ///< empty without "key="
    QString value;
};

/// Cuts one line into its words.
class LineCutter
{
public:
    explicit LineCutter(const QString &line) : m_line(line) {}

    /// The next word, or nothing at the line's end.
    std::optional<Word> next()
    {
        while (!atEnd() && m_line.at(m_place).isSpace())
            ++m_place;
        if (atEnd() || m_line.at(m_place) == u'#')
            return std::nullopt;
        Word word;
        const QString start = plain(true);
        if (atEnd() || m_line.at(m_place) != u'=') {
            word.value = start;
            return word;
        }
        if (start.isEmpty())
            throw Malformed{QStringLiteral("\"=\" without a name before it")};
        ++m_place;
        word.key = start;
        word.value = value();
        return word;
    }

private:
    bool atEnd() const { return m_place >= m_line.size(); }

    /// All up to a blank, and to "=" if that ends it.
    QString plain(bool endsAtEqual)
    {
        const qsizetype start = m_place;
        for (; !atEnd() && !m_line.at(m_place).isSpace(); ++m_place) {
            const QChar c = m_line.at(m_place);
            if (endsAtEqual && c == u'=')
                break;
            if (c == u'"' || c == u'\'')
                throw Malformed{QStringLiteral("a quote inside of %1").arg(m_line.mid(start, m_place - start + 1))};
        }
        return m_line.mid(start, m_place - start);
    }

    QString value()
    {
        if (atEnd() || (m_line.at(m_place) != u'"' && m_line.at(m_place) != u'\''))
            return plain(false);
        const QChar quote = m_line.at(m_place++);
        QString text;
        for (; !atEnd() && m_line.at(m_place) != quote; ++m_place) {
            if (quote == u'"' && m_line.at(m_place) == u'\\')
                ++m_place;
            if (!atEnd())
                text.append(m_line.at(m_place));
        }
        if (atEnd())
            throw Malformed{QStringLiteral("the quote %1 isn't closed").arg(quote)};
        ++m_place;
        if (!atEnd() && !m_line.at(m_place).isSpace())
            throw Malformed{QStringLiteral("no blank after the closing quote %1").arg(quote)};
        return text;
    }

    const QString &m_line;
    qsizetype m_place = 0;
};

qint64 timeOf(const QString &word, qint64 beforeMs)
{
    const bool relative = word.startsWith(u'+');
    bool ok = false;
    const double seconds = (relative ? word.mid(1) : word).toDouble(&ok);
    if (!ok || !(seconds >= 0 && seconds <= ScriptFile::longestSeconds) || word.mid(1).startsWith(u'+'))
        throw Malformed{QStringLiteral("\"%1\" is no time in seconds").arg(word)};
    const qint64 ms = std::llround(seconds * 1000);
    if (!relative && ms < beforeMs)
        throw Malformed{QStringLiteral("%1 s is earlier than the event before").arg(word)};
    return relative ? beforeMs + ms : ms;
}

QString wordAlone(LineCutter &line, const QString &missing)
{
    const std::optional<Word> word = line.next();
    if (!word || !word->key.isEmpty())
        throw Malformed{missing};
    return word->value;
}

ScriptEvent eventOf(LineCutter &line, const QString &time, qint64 beforeMs)
{
    ScriptEvent event;
    event.atMs = timeOf(time, beforeMs);
    event.verb = wordAlone(line, QStringLiteral("no verb after the time"));
    while (const std::optional<Word> word = line.next()) {
        if (word->key.isEmpty())
            throw Malformed{QStringLiteral("\"%1\" is no key=value").arg(word->value)};
        if (event.arguments.contains(word->key))
            throw Malformed{QStringLiteral("%1 is given twice").arg(word->key)};
        event.arguments.insert(word->key, word->value);
    }
    return event;
}

ScriptFile::Start startOf(LineCutter &line)
{
    const QString missing = QStringLiteral("start is \"login\" or \"now\"");
    const QString when = wordAlone(line, missing);
    if ((when != QLatin1StringView("login") && when != QLatin1StringView("now")) || line.next())
        throw Malformed{missing};
    return when == QLatin1StringView("now") ? ScriptFile::Start::Now : ScriptFile::Start::Login;
}

/// Reads one line into `file`.
void readLine(ScriptFile &file, const QString &text, int number)
{
    LineCutter line(text);
    const std::optional<Word> first = line.next();
    if (!first)
        return;
    if (!first->key.isEmpty())
        throw Malformed{QStringLiteral("no time before %1=").arg(first->key)};
    if (first->value != QLatin1StringView("start")) {
        const qint64 before = file.events.isEmpty() ? 0 : file.events.constLast().atMs;
        file.events.append(eventOf(line, first->value, before));
        file.events.last().line = number;
    } else if (!file.events.isEmpty()) {
        throw Malformed{QStringLiteral("start comes before the first event")};
    } else {
        file.start = startOf(line);
    }
}
} // namespace

std::optional<ScriptFile> ScriptFile::parse(const QString &text, const QString &fileName, QString *error)
{
    ScriptFile file;
    int number = 0;
    for (const QString &line : text.split(u'\n')) { // a carriage return before it is a blank
        ++number;
        try {
            readLine(file, line, number);
        } catch (const Malformed &malformed) {
            *error = QStringLiteral("%1:%2: %3").arg(fileName).arg(number).arg(malformed.reason);
            return std::nullopt;
        }
    }
    return file;
}

} // namespace tarvo::practice
