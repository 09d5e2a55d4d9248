#pragma once

#include <QString>
#include <QStringList>

namespace tarvo::network {

/// `text` without Chinese characters, trimmed.
QString sanitizeText(const QString &text);

/// The designators that a trimmed, upper-cased text may mean, likeliest first, each once, each 2 to 4 characters long:
/// the text itself, its parts between other characters, its runs of letters and digits, and all its letters and
/// digits put together.
QStringList designatorCandidates(const QString &upper);

/// What a pilot has typed, ready to be compared with designators without further allocation. Only the first five
/// characters are held: a longer text can't be part of a designator.
class DesignatorQuery
{
public:
    explicit DesignatorQuery(QStringView typed);

    bool isEmpty() const { return m_text.length == 0; }
    /// How well `designator` fits: 1200 equal, 900 begins with the query, 600 holds it, 40 more for four characters.
    /// 0 for no fit and for designators that aren't 3 or 4 characters long.
    int score(QStringView designator) const;

private:
    struct Needle
    {
        char16_t characters[5] = {};
        qsizetype length = 0;

        void append(QChar character);
        QStringView view() const { return {characters, length}; }
    };

    Needle m_text;    ///< trimmed and upper-cased
    Needle m_compact; ///< only its letters and digits
};

} // namespace tarvo::network
