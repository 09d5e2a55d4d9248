#include "network/IcaoText.h"

#include <QRegularExpression>
#include <QRegularExpressionMatchIterator>

#include <algorithm>
#include <iterator>

namespace tarvo::network {

namespace {

bool isDesignatorCharacter(QChar character)
{
    return (character >= u'A' && character <= u'Z') || (character >= u'0' && character <= u'9');
}

void addCandidate(QStringList &candidates, const QString &text)
{
    if (text.size() >= 2 && text.size() <= 4 && !candidates.contains(text))
        candidates.append(text);
}

} // namespace

QString sanitizeText(const QString &text)
{
    static const QRegularExpression chinese(
        QStringLiteral("[\\x{3400}-\\x{4DBF}\\x{4E00}-\\x{9FFF}\\x{F900}-\\x{FAFF}]"));
    // Most texts hold none of these, and a data base has tens of thousands of texts.
    if (std::none_of(text.begin(), text.end(), [](QChar character) { return character >= QChar(0x3400); }))
        return text.trimmed();
    return QString(text).remove(chinese).trimmed();
}

QStringList designatorCandidates(const QString &upper)
{
    static const QRegularExpression separators(QStringLiteral("[^A-Z0-9]+"));
    static const QRegularExpression run(QStringLiteral("([A-Z0-9]{2,4})"));
    static const QRegularExpression other(QStringLiteral("[^A-Z0-9]"));

    QStringList candidates;
    addCandidate(candidates, upper);
    const QStringList parts = upper.split(separators);
    for (const QString &part : parts)
        addCandidate(candidates, part);
    QRegularExpressionMatchIterator matches = run.globalMatch(upper);
    while (matches.hasNext())
        addCandidate(candidates, matches.next().captured(1));
    addCandidate(candidates, QString(upper).remove(other));
    return candidates;
}

void DesignatorQuery::Needle::append(QChar character)
{
    if (length < qsizetype(std::size(characters)))
        characters[length++] = character.unicode();
}

DesignatorQuery::DesignatorQuery(QStringView typed)
{
    for (const QChar character : typed.trimmed()) {
        const QChar upper = character.toUpper();
        m_text.append(upper);
        if (isDesignatorCharacter(upper))
            m_compact.append(upper);
    }
}

int DesignatorQuery::score(QStringView designator) const
{
    if (designator.size() < 3 || designator.size() > 4)
        return 0;
    // A query of punctuation alone has an empty compact form, which would begin every designator.
    const auto either = [this](auto fits) {
        return fits(m_text.view()) || (m_compact.length > 0 && fits(m_compact.view()));
    };
    int score = 0;
    if (either([&](QStringView query) { return designator == query; }))
        score = 1200;
    else if (either([&](QStringView query) { return designator.startsWith(query); }))
        score = 900;
    else if (either([&](QStringView query) { return designator.contains(query); }))
        score = 600;
    else
        return 0;
    return score + (designator.size() == 4 ? 40 : 0);
}

} // namespace tarvo::network
