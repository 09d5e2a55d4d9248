#include "simulator/msfs/library/ModelSearch.h"

#include <algorithm>

namespace tarvo::simulator::msfs {

namespace {

struct FieldPoints
{
    SearchText SearchableModel::*field;
    qint32 exact;
    qint32 prefix;
    qint32 contains;
    qint32 tokenBase;
};

constexpr FieldPoints fieldPoints[] = {
    {&SearchableModel::typeDesignator, 1400, 1100, 850, 260}, {&SearchableModel::icaoModel, 680, 420, 260, 150},
    {&SearchableModel::uiType, 620, 380, 240, 140},           {&SearchableModel::uiManufacturer, 520, 340, 220, 130},
    {&SearchableModel::uiVariation, 320, 180, 120, 70},       {&SearchableModel::title, 240, 150, 100, 50},
    {&SearchableModel::icaoManufacturer, 220, 140, 90, 40},
};
constexpr qint32 tokenPoints = 10;
constexpr qint32 runtimeBonus = 40;
constexpr qint32 airTrafficBonus = 15;
constexpr qint32 selectableBonus = 10;
constexpr qint32 communityBonus = 5;

qint32 fieldScore(const SearchText &text, const SearchTerm &term, const FieldPoints &points)
{
    if (text.key().empty())
        return 0;
    if (text.key() == term.key())
        return points.exact;
    if (text.key().starts_with(term.key()))
        return points.prefix;
    if (term.isInKeyOf(text))
        return points.contains;
    const int common = term.commonTokens(text);
    return common == 0 ? 0 : points.tokenBase + tokenPoints * common;
}

qint32 textScore(const SearchableModel &model, const SearchTerm &term)
{
    qint32 score = 0;
    for (const FieldPoints &points : fieldPoints)
        score += fieldScore(model.*points.field, term, points);
    return score;
}

qint32 bonus(const MsfsAircraftEntry &entry, MsfsRuntimeProfile profile)
{
    return (profile != MsfsRuntimeProfile::Unknown && entry.runtime == profile ? runtimeBonus : 0) +
           (entry.isAirTraffic ? airTrafficBonus : 0) + (entry.isUserSelectable ? selectableBonus : 0) +
           (entry.isCommunity ? communityBonus : 0);
}

bool comesFirst(const MsfsScoredModel &a, const MsfsScoredModel &b)
{
    return a.score != b.score ? a.score > b.score : a.entry.title < b.entry.title;
}

} // namespace

QList<MsfsScoredModel> searchModels(const ModelTables &tables, const QString &query, int limit,
                                    MsfsRuntimeProfile profile)
{
    const SearchTerm term(query);
    QList<MsfsScoredModel> found;
    tables.forEachCandidate(profile, [&](const SearchableModel &model, const ModelOutline &) {
        if (const qint32 score = textScore(model, term); score > 0)
            found.append({model.entry, score + bonus(model.entry, profile)});
    });
    std::stable_sort(found.begin(), found.end(), comesFirst);
    found.resize(std::min<qsizetype>(found.size(), std::max(limit, 1)));
    return found;
}

} // namespace tarvo::simulator::msfs
