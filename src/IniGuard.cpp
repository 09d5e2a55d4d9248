#include "IniGuard.h"

#include <initializer_list>

namespace tarvo {

namespace {

int digitValue(char c, int base)
{
    const int value = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                             : base;
    return value < base ? value : -1;
}

/// Reads the digits from `at` on, as many as there are. Overflow wraps at 16 bits, as it does in QSettings.
char readNumber(const QByteArray &text, qsizetype &at, int base)
{
    unsigned value = 0;
    for (; at < text.size(); ++at) {
        const int digit = digitValue(text.at(at), base);
        if (digit < 0)
            break;
        value = (value * static_cast<unsigned>(base) + static_cast<unsigned>(digit)) & 0xffff;
    }
    return value < 0x80 ? static_cast<char>(value) : '?';
}

/// The text with quotes, line continuations and escape sequences resolved as QSettings resolves them.
QByteArray unescaped(const QByteArray &text)
{
    QByteArray plain;
    plain.reserve(text.size());
    qsizetype at = 0;
    while (at < text.size()) {
        const char c = text.at(at++);
        if (c == '"')
            continue;
        if (c != '\\' || at == text.size()) {
            plain += c;
            continue;
        }
        if (text.at(at) == 'x')
            plain += readNumber(text, ++at, 16);
        else if (digitValue(text.at(at), 8) >= 0)
            plain += readNumber(text, at, 8);
        else if (const char escape = text.at(at++); QByteArray("abfnrtv\"?'\\").contains(escape))
            plain += '?'; // no part of what is looked for; any other escape vanishes
    }
    return plain;
}

} // namespace

bool holdsSerializedObject(const QByteArray &iniText)
{
    const QByteArray plain = unescaped(iniText);
    for (const char *token : {"@Variant(", "@DateTime("}) {
        for (qsizetype at = plain.indexOf(token); at >= 0; at = plain.indexOf(token, at + 1)) {
            if (at == 0 || plain.at(at - 1) != '@') // "@@" is plain text that begins with "@"
                return true;
        }
    }
    return false;
}

} // namespace tarvo
