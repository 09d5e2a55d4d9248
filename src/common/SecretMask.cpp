#include "common/SecretMask.h"

#include <QByteArrayView>
#include <QList>

#include <algorithm>
#include <array>
#include <utility>

namespace tarvo::common {

namespace {

/// What a byte of a secret can grow to: a percent-encoded "\u0000" for half of a character.
constexpr qsizetype longestForm = 18;
constexpr qsizetype shortestInRun = 4; ///< bytes; a shorter secret stands in too many texts by chance
constexpr int mostEscapes = 2;         ///< kinds around each other

/// A text with some escapes resolved.
struct View
{
    QByteArray bytes;
    QList<int> from; ///< where each byte stood, and the text's end; empty where nothing is resolved

    qsizetype origin(qsizetype at) const { return from.isEmpty() ? at : from.at(at); }
};

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

/// Makes a view byte by byte, never longer than its text. Hostile texts are decoded many times, so it writes at once
/// where the containers would look for room each time.
class ViewWriter
{
public:
    explicit ViewWriter(qsizetype longest)
    {
        m_view.bytes.resize(longest);
        m_view.from.resize(longest + 1);
        m_byte = m_view.bytes.data();
        m_from = m_view.from.data();
    }
    void put(char byte, qsizetype from)
    {
        *m_byte++ = byte;
        *m_from++ = static_cast<int>(from);
    }
    View finish(qsizetype end)
    {
        *m_from++ = static_cast<int>(end);
        m_view.bytes.truncate(m_byte - m_view.bytes.constData());
        m_view.from.resize(m_view.bytes.size() + 1);
        return std::move(m_view);
    }

private:
    View m_view;
    char *m_byte;
    int *m_from;
};

bool hasPercent(QByteArrayView text)
{
    for (qsizetype at = text.indexOf('%'); at >= 0; at = text.indexOf('%', at + 1)) {
        if (hexNumber(text, at + 1, 2) >= 0)
            return true;
    }
    return false;
}

View percentDecoded(QByteArrayView text)
{
    ViewWriter view(text.size());
    for (qsizetype at = 0; at < text.size();) {
        const int value = text[at] == '%' ? hexNumber(text, at + 1, 2) : -1;
        view.put(value < 0 ? text[at] : static_cast<char>(value), at);
        at += value < 0 ? 1 : 3;
    }
    return view.finish(text.size());
}

bool hasPlus(QByteArrayView text)
{
    return text.contains('+');
}

/// As a form sends it: a blank is a plus.
View formDecoded(QByteArrayView text)
{
    QByteArray blanks = text.toByteArray();
    return percentDecoded(blanks.replace('+', ' '));
}

bool hasBackslash(QByteArrayView text)
{
    return text.contains('\\');
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

View jsonDecoded(QByteArrayView text)
{
    constexpr QByteArrayView letters = "bfnrt";
    constexpr QByteArrayView meanings = "\b\f\n\r\t";
    ViewWriter view(text.size());
    for (qsizetype at = 0; at < text.size();) {
        if (text[at] != '\\' || at + 1 == text.size()) {
            view.put(text[at], at);
            ++at;
        } else if (const QString units = jsonUnits(text, at); !units.isEmpty()) {
            for (const char byte : units.toUtf8())
                view.put(byte, at);
            at += 6 * units.size();
        } else {
            const qsizetype letter = letters.indexOf(text[at + 1]);
            view.put(letter < 0 ? text[at + 1] : meanings[letter], at);
            at += 2;
        }
    }
    return view.finish(text.size());
}

/// One way in which a service may quote what it was sent.
struct Escape
{
    bool (*isIn)(QByteArrayView text); ///< else the text reads the same with it
    View (*decoded)(QByteArrayView text);
};
constexpr std::array escapes{Escape{hasBackslash, jsonDecoded}, Escape{hasPercent, percentDecoded},
                             Escape{hasPlus, formDecoded}};

/// Hands on the text as it is, then with each way to resolve up to so many kinds of escapes. Ends with true as soon as
/// `take` gives it.
template <class Take>
bool anyView(const View &text, int depth, const Take &take)
{
    if (take(text))
        return true;
    for (const Escape &escape : escapes) {
        if (depth == 0 || !escape.isIn(text.bytes))
            continue;
        View next = escape.decoded(text.bytes);
        for (int &at : next.from)
            at = static_cast<int>(text.origin(at));
        if (anyView(next, depth - 1, take))
            return true;
    }
    return false;
}

bool isBase64(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/' ||
           c == '-' || c == '_';
}

QByteArray base64Decoded(QByteArrayView run)
{
    QByteArray standard = run.toByteArray();
    return QByteArray::fromBase64(standard.replace('-', '+').replace('_', '/'));
}

bool isHex(char c)
{
    return digitValue(c) >= 0;
}

QByteArray hexDecoded(QByteArrayView run)
{
    return QByteArray::fromHex(
        run.first(run.size() / 2 * 2).toByteArray()); // of an odd one it takes the first for half
}

/// Letters that stand for bytes, without a break.
struct Run
{
    bool (*takes)(char c);
    QByteArray (*decoded)(QByteArrayView run);
    int bits;   ///< of each letter
    int shifts; ///< a run may begin with as many letters, less one, that don't belong to it
};
constexpr std::array runs{Run{isBase64, base64Decoded, 6, 4}, Run{isHex, hexDecoded, 4, 2}};

bool holdsSecret(const Run &kind, QByteArrayView run, const QByteArrayList &secrets)
{
    const auto hasSecret = [&secrets](const View &view) {
        return std::any_of(secrets.begin(), secrets.end(),
                           [&view](const QByteArray &secret) { return view.bytes.contains(secret); });
    };
    for (int skipped = 0; skipped < kind.shifts && skipped < run.size(); ++skipped) {
        if (anyView({kind.decoded(run.sliced(skipped)), {}}, mostEscapes, hasSecret))
            return true;
    }
    return false;
}

/// `shortest`: bytes of the shortest of the secrets.
void addRuns(const Run &kind, const View &view, const QByteArrayList &secrets, qsizetype shortest, QList<Range> &ranges)
{
    const qsizetype lettersNeeded = (shortest * 8 + kind.bits - 1) / kind.bits;
    const QByteArray &text = view.bytes;
    for (qsizetype at = 0; at < text.size();) {
        qsizetype end = at;
        while (end < text.size() && kind.takes(text.at(end)))
            ++end;
        if (end - at >= lettersNeeded && holdsSecret(kind, QByteArrayView(text).sliced(at, end - at), secrets)) {
            while (end < text.size() && text.at(end) == '=')
                ++end;
            ranges += Range(view.origin(at), view.origin(end));
        }
        at = end + 1;
    }
}

void addPlain(const View &view, const QByteArrayList &secrets, QList<Range> &ranges)
{
    for (const QByteArray &secret : secrets) {
        for (qsizetype at = view.bytes.indexOf(secret); at >= 0; at = view.bytes.indexOf(secret, at + secret.size()))
            ranges += Range(view.origin(at), view.origin(at + secret.size()));
    }
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

SecretMask::SecretMask(const QByteArrayList &secrets)
{
    for (const QByteArray &secret : secrets) {
        if (secret.isEmpty())
            continue;
        m_secrets += secret;
        m_longest = std::max(m_longest, secret.size());
        if (secret.size() < shortestInRun)
            continue;
        m_shortestInRuns = m_inRuns.isEmpty() ? secret.size() : std::min(m_shortestInRuns, secret.size());
        m_inRuns += secret;
    }
}

QList<Range> SecretMask::rangesIn(const QByteArray &text) const
{
    QList<Range> ranges;
    if (m_secrets.isEmpty())
        return ranges;
    anyView({text, {}}, mostEscapes, [&](const View &view) {
        addPlain(view, m_secrets, ranges);
        for (const Run &kind : runs) {
            if (!m_inRuns.isEmpty())
                addRuns(kind, view, m_inRuns, m_shortestInRuns, ranges);
        }
        return false; // all of them
    });
    return ranges;
}

QString SecretMask::applied(const QString &text) const
{
    if (text.size() > longestText)
        return appliedToCut(text);
    const QByteArray bytes = text.toUtf8();
    return QString::fromUtf8(masked(bytes, rangesIn(bytes)));
}

QString SecretMask::appliedToCut(const QString &text) const
{
    const QByteArray bytes = text.left(longestText).toUtf8();
    // A secret that is cut isn't found: what it may begin in goes.
    const qsizetype kept = std::max<qsizetype>(bytes.size() - longestForm * m_longest, 0);
    QList<Range> ranges = rangesIn(bytes);
    ranges.removeIf([kept](const Range &range) { return range.first >= kept; });
    qsizetype end = kept;
    for (const Range &range : std::as_const(ranges))
        end = std::max(end, range.second);
    return QString::fromUtf8(masked(bytes.first(end), std::move(ranges)));
}

QString withoutSecrets(const QString &text, const QStringList &secrets)
{
    QByteArrayList bytes;
    for (const QString &secret : secrets)
        bytes += secret.toUtf8();
    return SecretMask(bytes).applied(text);
}

} // namespace tarvo::common
