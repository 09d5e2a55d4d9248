#pragma once

#include "simulator/msfs/library/MsfsAircraftEntry.h"
#include "simulator/msfs/library/SearchText.h"

#include <array>
#include <string>
#include <unordered_map>
#include <vector>

namespace tarvo::simulator::msfs {

/// An entry with its texts made ready for the search.
struct SearchableModel
{
    explicit SearchableModel(MsfsAircraftEntry installed);

    MsfsAircraftEntry entry;
    SearchText typeDesignator;
    SearchText icaoManufacturer;
    SearchText icaoModel;
    SearchText uiManufacturer;
    SearchText uiType;
    SearchText uiVariation;
    SearchText airline;
    SearchText title;
    bool namesMaker = false; ///< its own text names a maker of add-ons
};

using ModelField = SearchText SearchableModel::*;

// Where a query's terms are looked for.
inline constexpr ModelField manufacturerFields[] = {&SearchableModel::icaoManufacturer, &SearchableModel::uiType,
                                                    &SearchableModel::uiManufacturer};
inline constexpr ModelField modelFields[] = {&SearchableModel::icaoModel, &SearchableModel::uiType,
                                             &SearchableModel::uiVariation, &SearchableModel::uiManufacturer};
inline constexpr ModelField airlineFields[] = {&SearchableModel::airline, &SearchableModel::uiVariation,
                                               &SearchableModel::uiType, &SearchableModel::uiManufacturer,
                                               &SearchableModel::title};
inline constexpr ModelField liveryFields[] = {&SearchableModel::uiVariation, &SearchableModel::uiType,
                                              &SearchableModel::uiManufacturer, &SearchableModel::title};

/// The little of a model that rules most of them out. A search goes over these, which lie close together.
struct ModelOutline
{
    explicit ModelOutline(const SearchableModel &model);

    std::size_t designatorHash; ///< of the type designator's key
    // The pairs of all texts that a term is looked for in, see pairsOf().
    quint64 manufacturerPairs;
    quint64 modelPairs;
    quint64 airlinePairs;
    quint64 liveryPairs;
};

/// True when the key of a text names a maker of add-ons, such as "PMDG".
bool namesMaker(std::string_view key);

/// Everything that a scan found, by simulator, each in the order in which it was found.
class ModelTables
{
public:
    void append(MsfsAircraftEntry entry);
    qsizetype count(MsfsRuntimeProfile runtime) const;

    /// The first one that may serve `profile` and whose title has this key; null without one. An empty key, such as
    /// that of a title in Chinese alone, is nobody's.
    const SearchableModel *withTitle(MsfsRuntimeProfile profile, const std::string &key) const;

    /// Tells `visit` every model that may serve `profile`, and its outline: those of that simulator; for Unknown all,
    /// 2020's first.
    template <typename Visit>
    void forEachCandidate(MsfsRuntimeProfile profile, Visit visit) const
    {
        for (std::size_t runtime = 0; runtime < m_byRuntime.size(); ++runtime) {
            if (!serves(runtime, profile))
                continue;
            const Table &table = m_byRuntime[runtime];
            for (std::size_t at = 0; at < table.models.size(); ++at)
                visit(table.models[at], table.outlines[at]);
        }
    }

private:
    struct Table
    {
        std::vector<SearchableModel> models;
        std::vector<ModelOutline> outlines;                  ///< one for each model
        std::unordered_map<std::string, std::size_t> titles; ///< the first model with a title's key
    };

    static bool serves(std::size_t runtime, MsfsRuntimeProfile profile)
    {
        return profile == MsfsRuntimeProfile::Unknown || runtime == static_cast<std::size_t>(profile);
    }

    std::array<Table, 3> m_byRuntime; ///< by the profile's number
};

} // namespace tarvo::simulator::msfs
