#pragma once

#include <QStringView>

#include <string>
#include <string_view>
#include <vector>

namespace tarvo::simulator::msfs {

/// `text` upper-cased, with nothing but A to Z and 0 to 9 left.
std::string normalizeKey(QStringView text);

/// The runs of A to Z and 0 to 9 in the upper-cased text, and its key; each once.
std::vector<std::string> tokenize(QStringView text);

/// A text of a model, made ready to be looked through very often.
class SearchText
{
public:
    SearchText() = default;
    explicit SearchText(QStringView text);

    std::string_view key() const { return std::string_view(m_framed).substr(m_keyAt, m_keySize); }
    /// All tokens, each with a blank on either side; empty when there are none. The key is one of them.
    std::string_view framed() const { return m_framed; }
    /// See pairsOf().
    quint64 pairs() const { return m_pairs; }

private:
    std::string m_framed;
    quint32 m_keyAt = 0;
    quint32 m_keySize = 0;
    quint64 m_pairs = 0;
};

/// What is looked for.
class SearchTerm
{
public:
    explicit SearchTerm(QStringView query);

    /// True when the query holds nothing but white space. It is in no text then.
    bool isBlank() const { return m_isBlank; }
    std::string_view key() const { return m_key.text; }
    /// The text's key holds the query's, or the two have a token of at least two characters in common.
    bool hits(const SearchText &text) const;
    /// False when no text that has only these pairs can be hit; a single look.
    bool mayHit(quint64 pairs) const;
    /// The key alone.
    bool isInKeyOf(const SearchText &text) const;
    /// How many of the query's tokens of at least two characters the text has.
    int commonTokens(const SearchText &text) const;

private:
    struct Piece
    {
        std::string text;
        quint64 pairs = 0;
    };

    bool m_isBlank = true;
    Piece m_key;
    std::vector<Piece> m_tokens; ///< framed by blanks
};

/// A bit for each two neighbours that occur in `text`: what lacks a bit of a piece can't hold the piece.
quint64 pairsOf(std::string_view text);

} // namespace tarvo::simulator::msfs
