// A secret in a chain of encodings within any text: nothing of it may be left.
#include "common/SecretMask.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

/// Blank, plus, percent, quotation mark, backslash, slash and letters of two and four bytes.
const QByteArray secret("Pa \xc3\xa4+%4\"s\\s&w/\xf0\x9f\x9b\xab!1");

/// The input's bytes, one decision each; 0 behind its end.
class Choices
{
public:
    Choices(const unsigned char *data, size_t size) : m_data(data), m_size(size) {}
    unsigned next() { return m_at < m_size ? m_data[m_at++] : 0; }
    QByteArray text(size_t longest)
    {
        const size_t size = std::min(longest, m_size - m_at);
        const QByteArray text(reinterpret_cast<const char *>(m_data + m_at), static_cast<qsizetype>(size));
        m_at += size;
        return text;
    }

private:
    const unsigned char *m_data;
    size_t m_size;
    size_t m_at = 0;
};

QByteArray hexOf(char c, bool upper)
{
    const QByteArray hex = QByteArray(1, c).toHex();
    return upper ? hex.toUpper() : hex;
}

/// What has to be encoded, half characters among it, and more as the bits of `choice` have it.
bool isEncoded(QByteArrayView needed, char c, unsigned choice, qsizetype at)
{
    return needed.contains(c) || static_cast<unsigned char>(c) >= 0x80 || (choice >> (at % 7) & 1U) != 0;
}

QByteArray percentEncoded(const QByteArray &text, unsigned choice)
{
    QByteArray result;
    for (qsizetype at = 0; at < text.size(); ++at)
        result += isEncoded("%", text[at], choice, at) ? '%' + hexOf(text[at], (choice & 0x80U) != 0) : text.mid(at, 1);
    return result;
}

QByteArray formEncoded(const QByteArray &text, unsigned choice)
{
    QByteArray result;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] == ' ')
            result += '+';
        else
            result +=
                isEncoded("%+", text[at], choice, at) ? '%' + hexOf(text[at], (choice & 0x80U) != 0) : text.mid(at, 1);
    }
    return result;
}

QByteArray jsonEncoded(const QByteArray &text, unsigned choice)
{
    QByteArray result;
    const QString units = QString::fromUtf8(text);
    for (qsizetype at = 0; at < units.size(); ++at) {
        const QChar unit = units[at];
        const bool mayStay = unit.unicode() < 0x80;
        if (mayStay && QByteArrayView("\"\\/").contains(unit.toLatin1()) && (choice & 0x80U) == 0)
            (result += '\\') += unit.toLatin1();
        else if (mayStay && !isEncoded("\"\\", unit.toLatin1(), choice, at))
            result += unit.toLatin1();
        else
            result += "\\u" + QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
    }
    return result;
}

QByteArray escaped(QByteArray text, Choices &choices)
{
    constexpr std::array encoders{jsonEncoded, percentEncoded, formEncoded};
    for (unsigned count = choices.next() % 3; count > 0; --count) {
        const unsigned kind = choices.next() % encoders.size();
        text = encoders[kind](text, choices.next());
    }
    return text;
}

/// As it is, or within one run of letters, of which neighbours shift the rest.
QByteArray placed(const QByteArray &text, unsigned kind, unsigned choice)
{
    const QByteArray before = QByteArray("xy").first(choice % 3);
    if (kind == 0)
        return text;
    if (kind == 1)
        return choice % 2 != 0 ? text.toHex().toUpper() : "f" + text.toHex();
    return (before + text)
        .toBase64((kind == 2 ? QByteArray::Base64Encoding : QByteArray::Base64UrlEncoding) |
                  (choice / 3 % 2 != 0 ? QByteArray::OmitTrailingEquals : QByteArray::KeepTrailingEquals));
}

/// A dozen bytes of the secret's form that stand in `masked` and nowhere around the secret.
QByteArray leftOf(const QByteArray &form, const QByteArray &masked, const QByteArray &around)
{
    constexpr qsizetype telling = 12;
    for (qsizetype at = 0; at + telling <= form.size(); ++at) {
        const QByteArray part = form.sliced(at, telling);
        if (masked.contains(part) && !around.contains(part))
            return part;
    }
    return {};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    static const tarvo::common::SecretMask mask({secret, "another secret", ""});
    Choices choices(data, size);
    const QByteArray inner = escaped(secret, choices);
    const unsigned kind = choices.next() % 4;
    const QByteArray inside = placed(inner, kind, choices.next());
    const QByteArray form = kind == 0 ? inside : escaped(inside, choices); // two kinds on each side of a run
    const QString separator(QLatin1Char(" :xyQ"[choices.next() % 5]));     // no part of an escape
    const QString before = QString::fromUtf8(choices.text(choices.next())) + separator;
    const QString behind = separator + QString::fromUtf8(choices.text(size));
    const QString text = before + QString::fromUtf8(form) + behind;
    const QByteArray masked = mask.applied(text).toUtf8();
    const QByteArray left = leftOf(form, masked, before.toUtf8() + '\n' + behind.toUtf8());
    if (!left.isEmpty() || masked.contains(secret)) {
        std::fprintf(stderr, "left: %s\nof: %s\nin: %s\n", left.constData(), form.constData(), masked.constData());
        std::abort();
    }
    return 0;
}
