#include "IniFormat.h"

#include <QString>
#include <QStringDecoder>
#include <QStringList>
#include <QVariant>

#include <algorithm>

namespace tarvo::ini {

namespace {

bool isLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// The value of a digit; -1 for what is none in this base.
int digitValue(char c, int base)
{
    const int value = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                             : base;
    return value < base ? value : -1;
}

/// Moves `at` over a line end, of one byte or of two that differ.
void skipLineEnd(QByteArrayView text, qsizetype &at)
{
    const char first = text[at++];
    if (at < text.size() && isLineEnd(text[at]) && text[at] != first)
        ++at;
}

struct Line
{
    QByteArrayView text;
    qsizetype equals = -1; ///< the first "=" outside quotes; -1 for none
};

/// Cuts a text into lines. A line goes on behind a line end that is quoted or escaped; ";" begins a comment.
class LineReader
{
public:
    explicit LineReader(QByteArrayView text) : m_text(text)
    {
        if (m_text.startsWith("\xEF\xBB\xBF")) // as some editors begin a file
            m_at = 3;
    }

    /// False at the end. Blank lines and comments are passed over.
    bool next(Line &line)
    {
        while (skipToLine()) {
            if (m_text[m_at] != ';') {
                line = readLine();
                return true;
            }
            while (m_at < m_text.size() && !isLineEnd(m_text[m_at]))
                ++m_at;
        }
        return false;
    }

private:
    bool skipToLine()
    {
        while (m_at < m_text.size() && (isBlank(m_text[m_at]) || isLineEnd(m_text[m_at])))
            ++m_at;
        return m_at < m_text.size();
    }

    Line readLine()
    {
        const qsizetype start = m_at;
        Line line;
        bool quoted = false;
        for (; m_at < m_text.size(); ++m_at) {
            const char c = m_text[m_at];
            if (!quoted && (isLineEnd(c) || c == ';'))
                break;
            if (c == '"')
                quoted = !quoted;
            else if (c == '=' && !quoted && line.equals < 0)
                line.equals = m_at - start;
            else if (c == '\\')
                skipEscaped();
        }
        line.text = m_text.sliced(start, m_at - start);
        return line;
    }

    /// Leaves `m_at` at the last byte of the escape.
    void skipEscaped()
    {
        if (m_at + 1 == m_text.size())
            return;
        if (++m_at; isLineEnd(m_text[m_at])) {
            skipLineEnd(m_text, m_at);
            --m_at;
        }
    }

    QByteArrayView m_text;
    qsizetype m_at = 0;
};

/// One text of a value, without quotes and escapes, as what it stands for.
QVariant meaningOf(const QString &text)
{
    if (!text.startsWith(u'@'))
        return text;
    if (text.startsWith(QLatin1StringView("@@")))
        return text.sliced(1);
    if (text == QLatin1StringView("@Invalid()"))
        return {};
    for (const QLatin1StringView name : {QLatin1StringView("@String("), QLatin1StringView("@ByteArray(")}) {
        if (!text.startsWith(name) || !text.endsWith(u')'))
            continue;
        const QString inner = text.sliced(name.size()).chopped(1);
        return name == QLatin1StringView("@String(") ? QVariant(inner) : QVariant(inner.toLatin1());
    }
    return text;
}

class ValueReader
{
public:
    explicit ValueReader(QByteArrayView text) : m_text(text) {}

    QVariant read()
    {
        skipBlanks();
        while (m_at < m_text.size())
            readPiece();
        endItem();
        if (m_items.size() == 1)
            return m_items.first();
        const bool allTexts = std::all_of(m_items.begin(), m_items.end(), [](const QVariant &item) {
            return item.metaType().id() == QMetaType::QString;
        });
        return allTexts ? QVariant(QVariant(m_items).toStringList()) : QVariant(m_items);
    }

private:
    void skipBlanks()
    {
        while (m_at < m_text.size() && isBlank(m_text[m_at]))
            ++m_at;
    }

    void readPiece()
    {
        const char c = m_text[m_at];
        if (c == '\\') {
            ++m_at;
            readEscape();
            m_kept = m_item.size();
        } else if (c == '"') {
            ++m_at;
            m_wasQuoted = true;
            m_quoted = !m_quoted;
            if (!m_quoted)
                skipBlanks();
        } else if (c == ',' && !m_quoted) {
            ++m_at;
            endItem();
            skipBlanks();
        } else {
            readPlain();
        }
    }

    void readPlain()
    {
        qsizetype end = m_at + 1;
        while (end < m_text.size() && m_text[end] != '\\' && m_text[end] != '"' && m_text[end] != ',')
            ++end;
        QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
        m_item += utf8(m_text.sliced(m_at, end - m_at));
        m_at = end;
    }

    /// Reads what follows a backslash. An escape that means nothing vanishes.
    void readEscape()
    {
        constexpr QByteArrayView letters = "abfnrtv\"?'\\";
        constexpr QByteArrayView meanings = "\a\b\f\n\r\t\v\"?'\\";
        if (m_at == m_text.size())
            return;
        const char c = m_text[m_at];
        if (const qsizetype letter = letters.indexOf(c); letter >= 0) {
            m_item += QLatin1Char(meanings[letter]);
            ++m_at;
        } else if (c == 'x') {
            ++m_at;
            readNumber(16);
        } else if (digitValue(c, 8) >= 0) {
            readNumber(8);
        } else if (isLineEnd(c)) {
            skipLineEnd(m_text, m_at);
        } else {
            ++m_at;
        }
    }

    /// As many digits as there are; a number that is too large wraps.
    void readNumber(int base)
    {
        const qsizetype start = m_at;
        unsigned value = 0;
        for (int digit = 0; m_at < m_text.size() && (digit = digitValue(m_text[m_at], base)) >= 0; ++m_at)
            value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        if (m_at > start)
            m_item += QChar(static_cast<char16_t>(value));
    }

    void endItem()
    {
        while (!m_wasQuoted && m_item.size() > m_kept && (m_item.back() == u' ' || m_item.back() == u'\t'))
            m_item.chop(1);
        m_items += meaningOf(m_item);
        m_item.clear();
        m_kept = 0;
        m_wasQuoted = false;
    }

    QByteArrayView m_text;
    qsizetype m_at = 0;
    QVariantList m_items;
    QString m_item;
    qsizetype m_kept = 0; ///< of the item's characters: blanks among them were escaped, and stay
    bool m_quoted = false;
    bool m_wasQuoted = false; ///< some of the item: blanks at its end stay
};

/// A section or key: "\" separates, "%20" and "%U5BC6" stand for characters.
QString keyText(QByteArrayView name)
{
    const QString text = QString::fromUtf8(name.trimmed());
    QString key;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar c = text.at(at);
        const bool wide = c == u'%' && at + 1 < text.size() && text.at(at + 1) == u'U';
        const QString digits = text.mid(at + (wide ? 2 : 1), wide ? 4 : 2);
        const bool escaped = c == u'%' && digits.size() == (wide ? 4 : 2) &&
                             std::all_of(digits.begin(), digits.end(),
                                         [](QChar digit) { return digitValue(digit.toLatin1(), 16) >= 0; });
        if (!escaped) {
            key += c == u'\\' ? QChar(u'/') : c;
            continue;
        }
        key += QChar(static_cast<char16_t>(digits.toUInt(nullptr, 16)));
        at += digits.size() + (wide ? 1 : 0);
    }
    return key;
}

/// What the keys of a section begin with.
QString sectionPrefix(QByteArrayView line)
{
    const qsizetype end = line.indexOf(']');
    const QByteArrayView name = line.sliced(1, (end < 0 ? line.size() : end) - 1).trimmed();
    if (name.compare("General", Qt::CaseInsensitive) == 0) // holds the keys that have no section
        return {};
    if (name.compare("%General", Qt::CaseInsensitive) == 0)
        return QString::fromLatin1(name.sliced(1)) + u'/';
    return keyText(name) + u'/';
}

} // namespace

QSettings::SettingsMap parse(QByteArrayView text)
{
    QSettings::SettingsMap values;
    LineReader lines(text);
    QString prefix;
    for (Line line; lines.next(line);) {
        if (line.text.startsWith('['))
            prefix = sectionPrefix(line.text);
        else if (line.equals >= 0)
            values.insert(prefix + keyText(line.text.first(line.equals)),
                          ValueReader(line.text.sliced(line.equals + 1)).read());
    }
    return values;
}

} // namespace tarvo::ini
