#pragma once

#include "simulator/msfs/library/MsfsAircraftEntry.h"
#include "simulator/msfs/library/SearchText.h"

#include <array>
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

/// True when the key of a text names a maker of add-ons, such as "PMDG".
bool namesMaker(std::string_view key);

/// Everything that a scan found, by simulator, each in the order in which it was found.
class ModelTables
{
public:
    using Models = std::vector<SearchableModel>;

    void append(MsfsAircraftEntry entry);
    qsizetype count(MsfsRuntimeProfile runtime) const { return static_cast<qsizetype>(of(runtime).size()); }

    /// Tells `visit` every model that may serve `profile`: those of that simulator; for Unknown all, 2020's first.
    template <typename Visit>
    void forEachCandidate(MsfsRuntimeProfile profile, Visit visit) const
    {
        for (std::size_t runtime = 0; runtime < m_byRuntime.size(); ++runtime) {
            if (profile != MsfsRuntimeProfile::Unknown && runtime != static_cast<std::size_t>(profile))
                continue;
            for (const SearchableModel &model : m_byRuntime[runtime])
                visit(model);
        }
    }

private:
    const Models &of(MsfsRuntimeProfile runtime) const { return m_byRuntime[static_cast<std::size_t>(runtime)]; }

    std::array<Models, 3> m_byRuntime; ///< by the profile's number
};

} // namespace tarvo::simulator::msfs
