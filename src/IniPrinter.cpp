#include "IniFormat.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace tarvo::ini {

namespace {

bool isHexDigit(QChar c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

QByteArray hexEscape(QChar c)
{
    return "\\x" + QByteArray::number(c.unicode(), 16);
}

/// The letter of a short escape, such as "n" for a line feed; 0 for a character that has none.
char escapeLetter(QChar c)
{
    constexpr QByteArrayView meanings("\0\a\b\f\n\r\t\v\"\\", 10);
    constexpr QByteArrayView letters("0abfnrtv\"\\");
    const qsizetype at = c.unicode() < 0x80 ? meanings.indexOf(c.toLatin1()) : -1;
    return at < 0 ? '\0' : letters[at];
}

/// Half of a character, which UTF-8 can't tell.
bool standsAlone(const QString &text, qsizetype at)
{
    const QChar c = text.at(at);
    if (c.isHighSurrogate())
        return at + 1 == text.size() || !text.at(at + 1).isLowSurrogate();
    return c.isLowSurrogate() && (at == 0 || !text.at(at - 1).isHighSurrogate());
}

/// `asBytes`: the characters are bytes, and those beyond ASCII no UTF-8.
QByteArray escaped(const QString &text, bool asBytes)
{
    QByteArray result;
    qsizetype plain = 0; // where characters begin that stand as they are
    bool afterNumber = false;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar c = text.at(at);
        const char letter = escapeLetter(c);
        const bool needsNumber = c.unicode() < 0x20 || (asBytes && c.unicode() >= 0x80) || standsAlone(text, at);
        const bool asNumber = letter == 0 && (needsNumber || (afterNumber && isHexDigit(c)));
        if (letter != 0 || asNumber) {
            result += QStringView(text).sliced(plain, at - plain).toUtf8();
            result += asNumber ? hexEscape(c) : QByteArray("\\") + letter;
            plain = at + 1;
        }
        afterNumber = asNumber || letter == '0';
    }
    return result + QStringView(text).sliced(plain).toUtf8();
}

QByteArray quotedWhereNeeded(const QString &text, bool asBytes = false)
{
    QByteArray result = escaped(text, asBytes);
    const bool quotes = text.contains(u';') || text.contains(u',') || text.contains(u'=') || result.startsWith(' ') ||
                        result.endsWith(' ');
    return quotes ? '"' + result + '"' : result;
}

QByteArray printItem(const QVariant &value)
{
    if (!value.isValid())
        return "@Invalid()";
    if (value.metaType().id() == QMetaType::QByteArray)
        return quotedWhereNeeded(QStringLiteral("@ByteArray(") + QString::fromLatin1(value.toByteArray()) + u')', true);
    const QString text = value.toString();
    if (text.contains(QChar(u'\0')))
        return quotedWhereNeeded(QStringLiteral("@String(") + text + u')');
    return quotedWhereNeeded(text.startsWith(u'@') ? u'@' + text : text);
}

QByteArray printValue(const QVariant &value)
{
    const int type = value.metaType().id();
    if (type != QMetaType::QStringList && type != QMetaType::QVariantList)
        return printItem(value);
    QByteArrayList items;
    const QVariantList values = value.toList();
    for (const QVariant &item : values)
        items += printItem(item);
    return items.isEmpty() ? QByteArray("@Invalid()") : items.join(", ");
}

QByteArray printKey(const QString &key)
{
    QByteArray result;
    for (const QChar c : key) {
        const ushort code = c.unicode();
        const bool plain = (code < 0x80 && c.isLetterOrNumber()) || c == u'_' || c == u'-' || c == u'.';
        if (plain)
            result += c.toLatin1();
        else if (c == u'/')
            result += '\\';
        else if (code <= 0xff)
            result += '%' + QByteArray::number(code, 16).toUpper().rightJustified(2, '0');
        else
            result += "%U" + QByteArray::number(code, 16).toUpper().rightJustified(4, '0');
    }
    return result;
}

QByteArray printSection(const QString &name)
{
    if (name.isEmpty())
        return "[General]\n";
    if (name.compare(QLatin1StringView("General"), Qt::CaseInsensitive) == 0)
        return "[%General]\n"; // "[General]" is the section without a name
    return '[' + printKey(name) + "]\n";
}

} // namespace

QByteArray print(const QSettings::SettingsMap &values)
{
    QMap<QString, QByteArray> sections; // the whole keys' order would tear a section apart
    for (auto it = values.begin(); it != values.end(); ++it) {
        const qsizetype slash = it.key().indexOf(u'/');
        const QString key = it.key().sliced(slash + 1);
        sections[it.key().left(qMax<qsizetype>(slash, 0))] += printKey(key) + '=' + printValue(it.value()) + '\n';
    }
    QByteArrayList texts;
    for (auto it = sections.begin(); it != sections.end(); ++it)
        texts += printSection(it.key()) + it.value();
    return texts.join('\n');
}

} // namespace tarvo::ini
