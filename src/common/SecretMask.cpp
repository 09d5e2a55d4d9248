#include "common/SecretMask.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>

#include <algorithm>
#include <utility>

namespace tarvo::common {

namespace {

constexpr qsizetype longestSearched =
    40 * 1024; ///< characters: the log keeps a tenth, and behind that a token may begin
/// What a byte of a secret can grow to: a percent-encoded "\u0000" for half of a character.
constexpr qsizetype longestForm = 18;
constexpr qsizetype shortestInBase64 = 4; ///< bytes; a shorter secret stands in too many texts by chance

/// A text with one kind of escapes resolved.
struct Decoded
{
    QByteArray bytes;
    QList<qsizetype> from; ///< where each byte stood, and the text's end
};

using Decoder = Decoded (*)(QByteArrayView text);
using Range = std::pair<qsizetype, qsizetype>; ///< first byte, and the one behind the last

int digitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// -1 where that many hexadecimal digits don't stand.
int hexNumber(QByteArrayView text, qsizetype at, int digits)
{
    if (at + digits > text.size())
        return -1;
    int value = 0;
    for (const char c : text.sliced(at, digits)) {
        const int digit = digitValue(c);
        if (digit < 0)
            return -1;
        value = value * 16 + digit;
    }
    return value;
}

Decoded withRoomFor(QByteArrayView text)
{
    Decoded result;
    result.bytes.reserve(text.size());
    result.from.reserve(text.size() + 1);
    return result;
}

Decoded percentDecoded(QByteArrayView text)
{
    Decoded result = withRoomFor(text);
    for (qsizetype at = 0; at < text.size();) {
        const int value = text[at] == '%' ? hexNumber(text, at + 1, 2) : -1;
        result.bytes += value < 0 ? text[at] : static_cast<char>(value);
        result.from += at;
        at += value < 0 ? 1 : 3;
    }
    result.from += text.size();
    return result;
}

/// As a form sends it: a blank is a plus.
Decoded formDecoded(QByteArrayView text)
{
    QByteArray blanks = text.toByteArray();
    return percentDecoded(blanks.replace('+', ' '));
}

/// The UTF-16 units of "\u....", two of them for a character that takes two.
QString jsonUnits(QByteArrayView text, qsizetype at)
{
    const int first = at + 1 < text.size() && text[at + 1] == 'u' ? hexNumber(text, at + 2, 4) : -1;
    if (first < 0)
        return {};
    const QChar unit(static_cast<char16_t>(first));
    const bool pair = unit.isHighSurrogate() && text.sliced(at + 6).startsWith("\\u");
    const int second = pair ? hexNumber(text, at + 8, 4) : -1;
    return second < 0 ? QString(unit) : QString(unit) + QChar(static_cast<char16_t>(second));
}

Decoded jsonDecoded(QByteArrayView text)
{
    constexpr QByteArrayView letters = "bfnrt";
    constexpr QByteArrayView meanings = "\b\f\n\r\t";
    Decoded result = withRoomFor(text);
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype start = at;
        if (text[at] != '\\' || at + 1 == text.size()) {
            result.bytes += text[at++];
        } else if (const QString units = jsonUnits(text, at); !units.isEmpty()) {
            result.bytes += units.toUtf8();
            at += 6 * units.size();
        } else {
            const qsizetype letter = letters.indexOf(text[at + 1]);
            result.bytes += letter < 0 ? text[at + 1] : meanings[letter];
            at += 2;
        }
        while (result.from.size() < result.bytes.size())
            result.from += start;
    }
    result.from += text.size();
    return result;
}

struct Chain
{
    QByteArrayView escapes; ///< a text with none of these reads the same with another chain
    QList<Decoder> decoders;

    bool isNeeded(QByteArrayView text) const
    {
        return decoders.isEmpty() ||
               std::any_of(escapes.begin(), escapes.end(), [text](char escape) { return text.contains(escape); });
    }
};

/// The ways in which a service may quote what it was sent, the outermost first.
const QList<Chain> chains{{"", {}},
                          {"\\", {jsonDecoded}},
                          {"\\", {jsonDecoded, jsonDecoded}},
                          {"%", {percentDecoded}},
                          {"%", {percentDecoded, jsonDecoded}},
                          {"%+", {formDecoded}},
                          {"%+", {formDecoded, jsonDecoded}}};

Decoded decoded(const QByteArray &text, const QList<Decoder> &chain)
{
    Decoded result{text, {}};
    result.from.reserve(text.size() + 1);
    for (qsizetype at = 0; at <= text.size(); ++at)
        result.from += at;
    for (const Decoder decode : chain) {
        Decoded next = decode(result.bytes);
        for (qsizetype &at : next.from)
            at = result.from.at(at);
        result = std::move(next);
    }
    return result;
}

/// Where the secrets stand in `text` under any of the ways.
QList<Range> plainRanges(const QByteArray &text, const QByteArrayList &secrets)
{
    QList<Range> ranges;
    for (const Chain &chain : chains) {
        if (!chain.isNeeded(text))
            continue;
        const Decoded seen = decoded(text, chain.decoders);
        for (const QByteArray &secret : secrets) {
            for (qsizetype at = seen.bytes.indexOf(secret); at >= 0;
                 at = seen.bytes.indexOf(secret, at + secret.size()))
                ranges += Range(seen.from.at(at), seen.from.at(at + secret.size()));
        }
    }
    return ranges;
}

bool isBase64(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/' ||
           c == '-' || c == '_';
}

/// A run may begin with letters that don't belong to it.
bool holdsSecret(QByteArray run, const QByteArrayList &secrets)
{
    run.replace('-', '+').replace('_', '/');
    for (qsizetype skipped = 0; skipped < 4 && skipped < run.size(); ++skipped) {
        if (!plainRanges(QByteArray::fromBase64(run.sliced(skipped)), secrets).isEmpty())
            return true;
    }
    return false;
}

QList<Range> base64Ranges(const QByteArray &text, QByteArrayList secrets)
{
    secrets.removeIf([](const QByteArray &secret) { return secret.size() < shortestInBase64; });
    QList<Range> ranges;
    for (qsizetype at = 0; at < text.size() && !secrets.isEmpty();) {
        qsizetype end = at;
        while (end < text.size() && isBase64(text.at(end)))
            ++end;
        const qsizetype encoded = shortestInBase64 * 4 / 3;
        if (end - at >= encoded && holdsSecret(text.sliced(at, end - at), secrets)) {
            while (end < text.size() && text.at(end) == '=')
                ++end;
            ranges += Range(at, end);
        }
        at = end + 1;
    }
    return ranges;
}

QByteArray masked(const QByteArray &text, QList<Range> ranges)
{
    std::sort(ranges.begin(), ranges.end());
    QByteArray result;
    qsizetype done = 0;
    for (const auto &[first, end] : std::as_const(ranges)) {
        if (first >= done)
            result += text.sliced(done, first - done) + "******";
        done = std::max(done, end);
    }
    return result + text.sliced(done);
}

} // namespace

QString withoutSecrets(const QString &text, const QStringList &secrets)
{
    QByteArrayList forms;
    qsizetype longest = 0;
    for (const QString &secret : secrets) {
        if (secret.isEmpty())
            continue;
        forms += secret.toUtf8();
        longest = std::max(longest, forms.last().size());
    }
    if (forms.isEmpty())
        return text.left(longestSearched);
    // A secret that is cut isn't found: what it may begin in goes.
    const bool isCut = text.size() > longestSearched;
    QByteArray bytes = text.left(longestSearched).toUtf8();
    QList<Range> ranges = plainRanges(bytes, forms) + base64Ranges(bytes, forms);
    if (!isCut)
        return QString::fromUtf8(masked(bytes, std::move(ranges)));
    const qsizetype kept = std::max<qsizetype>(bytes.size() - longestForm * longest, 0);
    ranges.removeIf([kept](const Range &range) { return range.first >= kept; });
    qsizetype end = kept;
    for (const Range &range : std::as_const(ranges))
        end = std::max(end, range.second);
    return QString::fromUtf8(masked(bytes.first(end), std::move(ranges)));
}

} // namespace tarvo::common
