#include "network/TypeNames.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>

#include <algorithm>

namespace tarvo::network {

namespace {

QStringList wordsOf(const QString &query)
{
    static const QRegularExpression between(QStringLiteral("[^\\p{L}\\p{N}]+"));
    return query.toUpper().split(between, Qt::SkipEmptyParts);
}

} // namespace

QString compactName(QStringView text)
{
    QString compact;
    for (const QChar character : text)
        if (character.isLetterOrNumber())
            compact += character.toUpper();
    return compact;
}

void TypeNames::add(const Place &place, const QString &maker, const QString &model)
{
    m_names.append({place, compactName(maker), compactName(model)});
}

QList<TypeNames::Place> TypeNames::search(const QString &query, qsizetype limit) const
{
    const QStringList words = wordsOf(query);
    const QString whole = compactName(query);
    QList<Place> begins;
    QList<Place> holds;
    QSet<QString> found;
    for (const Name &name : whole.size() < 2 ? QList<Name>() : m_names) {
        const bool fits = std::all_of(words.begin(), words.end(), [&name](const QString &word) {
            return name.model.contains(word) || name.maker.contains(word);
        });
        if (!fits || found.contains(name.place.designator))
            continue;
        found.insert(name.place.designator);
        (name.model.startsWith(whole) ? begins : holds).append(name.place);
    }
    return (begins + holds).first(std::clamp<qsizetype>(limit, 0, begins.size() + holds.size()));
}

} // namespace tarvo::network
