#include "simulator/msfs/library/SearchText.h"

#include <QString>

#include <algorithm>

namespace tarvo::simulator::msfs {

namespace {

constexpr std::size_t shortestToken = 2; ///< a single character says nothing

/// What is kept of an upper-cased or an ASCII character; 0 for nothing.
char kept(char16_t unit)
{
    if ((unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9'))
        return static_cast<char>(unit);
    return unit >= u'a' && unit <= u'z' ? static_cast<char>(unit - u'a' + u'A') : '\0';
}

/// The runs of kept characters, a blank before each and one behind the last.
std::string framedRuns(QStringView text)
{
    std::string framed;
    framed.reserve(2 * static_cast<std::size_t>(text.size()) + 4); // room for the key too
    bool isInRun = false;
    for (const QChar character : text) {
        const char one = kept(character.unicode());
        if (one != '\0' && !isInRun)
            framed += ' ';
        if (one != '\0')
            framed += one;
        isInRun = one != '\0';
    }
    if (!framed.empty())
        framed += ' ';
    return framed;
}

std::string framedRunsOf(QStringView text)
{
    const bool isAscii = std::all_of(text.begin(), text.end(), [](QChar one) { return one.unicode() < 0x80; });
    return isAscii ? framedRuns(text) : framedRuns(text.toString().toUpper());
}

std::string withoutBlanks(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

bool holds(std::string_view text, quint64 pairs, std::string_view piece, quint64 pairsOfPiece)
{
    return (pairsOfPiece & ~pairs) == 0 && text.find(piece) != std::string_view::npos;
}

} // namespace

quint64 pairsOf(std::string_view text)
{
    quint64 pairs = 0;
    for (std::size_t at = 1; at < text.size(); ++at) {
        const quint32 pair = static_cast<unsigned char>(text[at - 1]) << 8U | static_cast<unsigned char>(text[at]);
        pairs |= quint64(1) << (pair * 0x9E3779B1U >> 26U);
    }
    return pairs;
}

std::string normalizeKey(QStringView text)
{
    return withoutBlanks(framedRunsOf(text));
}

std::vector<std::string> tokenize(QStringView text)
{
    const SearchText framed(text);
    std::vector<std::string> tokens;
    for (std::size_t at = 1; at < framed.framed().size();) {
        const std::size_t end = framed.framed().find(' ', at);
        const std::string token(framed.framed().substr(at, end - at));
        if (std::find(tokens.begin(), tokens.end(), token) == tokens.end())
            tokens.push_back(token);
        at = end + 1;
    }
    return tokens;
}

SearchText::SearchText(QStringView text) : m_framed(framedRunsOf(text))
{
    const std::string key = withoutBlanks(m_framed);
    m_keySize = static_cast<quint32>(key.size());
    m_keyAt = key.empty() ? 0 : 1;
    if (m_framed.size() > key.size() + 2) { // more than one token
        m_keyAt = static_cast<quint32>(m_framed.size());
        m_framed += key + ' ';
    }
    m_framed.shrink_to_fit();
    m_pairs = pairsOf(m_framed);
}

SearchTerm::SearchTerm(QStringView query) : m_isBlank(query.trimmed().isEmpty()), m_key{normalizeKey(query), 0}
{
    m_key.pairs = pairsOf(m_key.text);
    for (const std::string &token : tokenize(query)) {
        const std::string framed = ' ' + token + ' ';
        if (token.size() >= shortestToken)
            m_tokens.push_back({framed, pairsOf(framed)});
    }
}

bool SearchTerm::isInKeyOf(const SearchText &text) const
{
    // Deliberate: a query of signs alone, such as Chinese ones, has an empty key, which every key holds.
    return !text.key().empty() && holds(text.key(), text.pairs(), m_key.text, m_key.pairs);
}

int SearchTerm::commonTokens(const SearchText &text) const
{
    return static_cast<int>(std::count_if(m_tokens.begin(), m_tokens.end(), [&text](const Piece &token) {
        return holds(text.framed(), text.pairs(), token.text, token.pairs);
    }));
}

bool SearchTerm::mayHit(quint64 pairs) const
{
    const auto mayHold = [pairs](const Piece &piece) { return (piece.pairs & ~pairs) == 0; };
    return !m_isBlank && (mayHold(m_key) || std::any_of(m_tokens.begin(), m_tokens.end(), mayHold));
}

bool SearchTerm::hits(const SearchText &text) const
{
    return !m_isBlank && (isInKeyOf(text) || commonTokens(text) > 0);
}

} // namespace tarvo::simulator::msfs
