#include "network/IcaoSnapshot.h"

#include "network/IcaoText.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tarvo::network {

namespace {

SwiftAircraftIcaoRow cleaned(SwiftAircraftIcaoRow row)
{
    for (QString *text : {&row.designator, &row.manufacturer, &row.model, &row.type, &row.engine,
                          &row.wakeTurbulenceCategory, &row.created, &row.lastUpdated})
        *text = sanitizeText(*text);
    return row;
}

} // namespace

IcaoSnapshot::IcaoSnapshot(const QList<SwiftAircraftIcaoRow> &rows, const Metadata &metadata)
    : m_metadata(metadata), m_label(metadata.value(QStringLiteral("latest_snapshot")))
{
    for (const SwiftAircraftIcaoRow &row : rows) {
        const SwiftAircraftIcaoRow clean = cleaned(row);
        if (!clean.designator.isEmpty())
            m_rows[clean.designator].append(clean);
    }
    m_designators = m_rows.keys();
    std::sort(m_designators.begin(), m_designators.end());
    for (const QString &designator : std::as_const(m_designators)) {
        const QList<SwiftAircraftIcaoRow> types = m_rows.value(designator);
        for (qsizetype i = 0; i < types.size(); ++i)
            m_names.add({designator, i}, types.at(i).manufacturer, types.at(i).model);
    }
}

SwiftAircraftIcaoResult IcaoSnapshot::normalize(const QString &text) const
{
    const QString upper = text.trimmed().toUpper();
    SwiftAircraftIcaoResult result{.text = text, .canonical = upper};
    if (upper.isEmpty() || isEmpty())
        return result;
    const QStringList candidates = designatorCandidates(upper);
    for (const QString &candidate : candidates) {
        if (!m_rows.contains(candidate))
            continue;
        result.canonical = candidate;
        result.exact = candidate == upper;
        result.found = true;
        break;
    }
    return result;
}

QStringList IcaoSnapshot::suggest(const QString &query, int limit) const
{
    const DesignatorQuery typed(query);
    if (limit < 1 || typed.isEmpty())
        return {};
    using Fit = std::pair<int, const QString *>;
    std::vector<Fit> fits;
    for (const QString &designator : m_designators) {
        if (const int score = typed.score(designator); score > 0)
            fits.emplace_back(score, &designator);
    }
    std::stable_sort(fits.begin(), fits.end(),
                     [](const Fit &one, const Fit &other) { return one.first > other.first; });
    QStringList result;
    for (const auto &[score, designator] : fits) {
        if (result.size() >= limit)
            break;
        result.append(*designator);
    }
    return result;
}

QList<SwiftAircraftIcaoRow> IcaoSnapshot::searchByName(const QString &query, int limit) const
{
    QList<SwiftAircraftIcaoRow> types;
    const QList<TypeNames::Place> places = m_names.search(query, limit);
    for (const TypeNames::Place &place : places)
        types.append(m_rows.value(place.designator).at(place.row));
    return types;
}

} // namespace tarvo::network
