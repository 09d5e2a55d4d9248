#include "network/IcaoSnapshot.h"

#include "network/IcaoText.h"

#include <algorithm>

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
    QStringList result;
    const DesignatorQuery typed(query);
    if (limit < 1 || typed.isEmpty())
        return result;
    // One walk for each score instead of a sort: only the result is allocated, and equal scores stay in order.
    for (const int score : designatorScores) {
        for (const QString &designator : m_designators) {
            if (typed.score(designator) != score)
                continue;
            result.append(designator);
            if (result.size() >= limit)
                return result;
        }
    }
    return result;
}

} // namespace tarvo::network
