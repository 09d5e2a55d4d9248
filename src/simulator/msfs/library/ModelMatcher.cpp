#include "simulator/msfs/library/ModelMatcher.h"

#include <QHash>

#include <algorithm>
#include <functional>
#include <utility>

namespace tarvo::simulator::msfs {

namespace {

using Model = SearchableModel;
using Outline = ModelOutline;

template <std::size_t Count>
bool anyTermMatches(const SearchTerm &term, const Model &model, const ModelField (&fields)[Count])
{
    return std::any_of(std::begin(fields), std::end(fields), [&](ModelField field) { return term.hits(model.*field); });
}

/// The rows of a type, those of one manufacturer together.
struct Family
{
    SearchTerm manufacturer;
    std::vector<SearchTerm> models;
};

std::vector<Family> familiesOf(const QList<network::SwiftAircraftIcaoRow> &rows)
{
    QHash<QString, std::size_t> places;
    std::vector<Family> families;
    for (const network::SwiftAircraftIcaoRow &row : rows) {
        const auto known = places.constFind(row.manufacturer);
        if (known == places.cend()) {
            places.insert(row.manufacturer, families.size());
            families.push_back({SearchTerm(row.manufacturer), {}});
        }
        families[places.value(row.manufacturer)].models.emplace_back(row.model);
    }
    return families;
}

enum class Fit
{
    None,
    Exact,
    Loose, ///< of the family; or any model at all, for an empty type
};

class TypeTest
{
public:
    explicit TypeTest(const ModelQuery &query)
        : m_key(normalizeKey(query.type)),
          m_hash(std::hash<std::string_view>()(m_key)),
          m_families(familiesOf(query.familyRows))
    {
    }

    Fit fit(const Model &model, const Outline &outline) const
    {
        if (m_key.empty())
            return Fit::Loose;
        if (outline.designatorHash == m_hash && model.typeDesignator.key() == m_key)
            return Fit::Exact;
        const bool isRelative = std::any_of(m_families.begin(), m_families.end(),
                                            [&](const Family &family) { return holds(family, model, outline); });
        return isRelative ? Fit::Loose : Fit::None;
    }

private:
    static bool holds(const Family &family, const Model &model, const Outline &outline)
    {
        return family.manufacturer.mayHit(outline.manufacturerPairs) &&
               anyTermMatches(family.manufacturer, model, manufacturerFields) &&
               std::any_of(family.models.begin(), family.models.end(), [&](const SearchTerm &term) {
                   return term.mayHit(outline.modelPairs) && anyTermMatches(term, model, modelFields);
               });
    }

    std::string m_key;
    std::size_t m_hash;
    std::vector<Family> m_families;
};

struct Points
{
    qint32 exact;
    qint32 loose;
    qint32 runtime;
    qint32 airline;
    qint32 livery;
};

constexpr Points firstPass{.exact = 2000, .loose = 1500, .runtime = 80, .airline = 90, .livery = 100};
// Deliberate: under the same test it finds nothing that the first doesn't. It is the place for a looser test.
constexpr Points secondPass{.exact = 500, .loose = 420, .runtime = 40, .airline = 60, .livery = 70};
constexpr qint32 goodEnough = 120;

constexpr qint32 airTrafficPoints = 140;
constexpr qint32 notSelectablePoints = 70;
constexpr qint32 notCommunityPoints = 25;
constexpr qint32 unaskedMakerPoints = -350;

/// Goes over the models for one query.
class Search
{
public:
    Search(const ModelTables &tables, const ModelQuery &query)
        : m_tables(tables),
          m_query(query),
          m_typeTest(query),
          m_airline(query.airline),
          m_livery(query.livery),
          m_namesMaker(queryNamesMaker(query))
    {
    }

    struct Best
    {
        const Model *model = nullptr;
        qint32 score = MsfsModelMatch::noScore;
    };

    Best best(const Points &points) const
    {
        Best best;
        m_tables.forEachCandidate(m_query.profile, [&](const Model &model, const Outline &outline) {
            const Fit fit = m_typeTest.fit(model, outline);
            if (fit == Fit::None)
                return;
            const qint32 kind = kindScore(model, fit, points);
            if (kind + points.airline + points.livery <= best.score) // whatever its texts say
                return;
            if (const qint32 score = kind + textScore(model, outline, points); score > best.score)
                best = {&model, score};
        });
        return best;
    }

private:
    static bool queryNamesMaker(const ModelQuery &query)
    {
        const std::string key = normalizeKey(query.airline + query.livery);
        // "INI" counts here and not in a model's own text, where it is in too many words.
        return namesMaker(key) || key.find("INI") != std::string::npos;
    }

    qint32 quality(const Model &model) const
    {
        return (model.entry.isAirTraffic ? airTrafficPoints : 0) +
               (model.entry.isUserSelectable ? 0 : notSelectablePoints) +
               (model.entry.isCommunity ? 0 : notCommunityPoints) +
               (model.namesMaker && !m_namesMaker ? unaskedMakerPoints : 0);
    }

    qint32 kindScore(const Model &model, Fit fit, const Points &points) const
    {
        const bool isAskedRuntime =
            m_query.profile != MsfsRuntimeProfile::Unknown && model.entry.runtime == m_query.profile;
        return (fit == Fit::Exact ? points.exact : points.loose) + (isAskedRuntime ? points.runtime : 0) +
               quality(model);
    }

    qint32 textScore(const Model &model, const Outline &outline, const Points &points) const
    {
        const bool hasAirline =
            m_airline.mayHit(outline.airlinePairs) && anyTermMatches(m_airline, model, airlineFields);
        const bool hasLivery = m_livery.mayHit(outline.liveryPairs) && anyTermMatches(m_livery, model, liveryFields);
        return (hasAirline ? points.airline : 0) + (hasLivery ? points.livery : 0);
    }

    const ModelTables &m_tables;
    const ModelQuery &m_query;
    TypeTest m_typeTest;
    SearchTerm m_airline;
    SearchTerm m_livery;
    bool m_namesMaker;
};

} // namespace

MsfsModelMatch findModel(const ModelTables &tables, const ModelQuery &query)
{
    const Search search(tables, query);
    Search::Best best = search.best(firstPass);
    const bool fallback = best.score < goodEnough;
    if (fallback)
        best = search.best(secondPass);
    MsfsModelMatch match{.runtime = query.profile,
                         .entry = {},
                         .normalizedType = query.type,
                         .normalizedAirline = query.airline,
                         .normalizedLivery = query.livery,
                         .score = best.score,
                         .fallback = fallback};
    if (best.model) {
        match.runtime = best.model->entry.runtime;
        match.entry = best.model->entry;
    }
    return match;
}

bool isOfType(const MsfsAircraftEntry &entry, const ModelQuery &query)
{
    const SearchableModel model(entry);
    return TypeTest(query).fit(model, ModelOutline(model)) != Fit::None;
}

std::optional<MsfsAircraftEntry> findTitle(const ModelTables &tables, MsfsRuntimeProfile profile, const QString &title)
{
    const Model *model = tables.withTitle(profile, normalizeKey(title));
    return model ? std::optional(model->entry) : std::nullopt;
}

} // namespace tarvo::simulator::msfs
