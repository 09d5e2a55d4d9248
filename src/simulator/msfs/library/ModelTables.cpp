#include "simulator/msfs/library/ModelTables.h"

#include <algorithm>
#include <utility>

namespace tarvo::simulator::msfs {

namespace {

constexpr std::string_view makers[] = {"FENIX", "FLYBYWIRE", "FBW", "A32NX", "PMDG", "INIBUILDS"};

} // namespace

bool namesMaker(std::string_view key)
{
    return std::any_of(std::begin(makers), std::end(makers),
                       [key](std::string_view maker) { return key.find(maker) != std::string_view::npos; });
}

SearchableModel::SearchableModel(MsfsAircraftEntry installed)
    : entry(std::move(installed)),
      typeDesignator(entry.metadata.icaoTypeDesignator),
      icaoManufacturer(entry.metadata.icaoManufacturer),
      icaoModel(entry.metadata.icaoModel),
      uiManufacturer(entry.uiManufacturer),
      uiType(entry.uiType),
      uiVariation(entry.uiVariation),
      airline(entry.airline),
      title(entry.title)
{
    std::string all;
    for (const SearchText *text : {&title, &uiManufacturer, &uiType, &uiVariation, &icaoManufacturer, &icaoModel})
        all += text->key();
    namesMaker = msfs::namesMaker(all + normalizeKey(entry.package));
}

void ModelTables::append(MsfsAircraftEntry entry)
{
    Models &models = m_byRuntime[static_cast<std::size_t>(entry.runtime)];
    models.emplace_back(std::move(entry));
}

} // namespace tarvo::simulator::msfs
