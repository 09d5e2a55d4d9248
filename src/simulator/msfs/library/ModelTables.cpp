#include "simulator/msfs/library/ModelTables.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace tarvo::simulator::msfs {

namespace {

constexpr std::string_view makers[] = {"FENIX", "FLYBYWIRE", "FBW", "A32NX", "PMDG", "INIBUILDS"};

template <std::size_t Count>
quint64 pairsOfAll(const SearchableModel &model, const ModelField (&fields)[Count])
{
    quint64 pairs = 0;
    for (const ModelField field : fields)
        pairs |= (model.*field).pairs();
    return pairs;
}

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

ModelOutline::ModelOutline(const SearchableModel &model)
    : designatorHash(std::hash<std::string_view>()(model.typeDesignator.key())),
      manufacturerPairs(pairsOfAll(model, manufacturerFields)),
      modelPairs(pairsOfAll(model, modelFields)),
      airlinePairs(pairsOfAll(model, airlineFields)),
      liveryPairs(pairsOfAll(model, liveryFields))
{
}

void ModelTables::append(MsfsAircraftEntry entry)
{
    Table &table = m_byRuntime[static_cast<std::size_t>(entry.runtime)];
    const SearchableModel &model = table.models.emplace_back(std::move(entry));
    table.outlines.emplace_back(model);
    table.titles.emplace(std::string(model.title.key()), table.models.size() - 1); // nothing when an earlier one has it
}

const SearchableModel *ModelTables::withTitle(MsfsRuntimeProfile profile, const std::string &key) const
{
    if (key.empty())
        return nullptr;
    for (std::size_t runtime = 0; runtime < m_byRuntime.size(); ++runtime) {
        const Table &table = m_byRuntime[runtime];
        if (const auto found = table.titles.find(key); serves(runtime, profile) && found != table.titles.end())
            return &table.models[found->second];
    }
    return nullptr;
}

qsizetype ModelTables::count(MsfsRuntimeProfile runtime) const
{
    return static_cast<qsizetype>(m_byRuntime[static_cast<std::size_t>(runtime)].models.size());
}

} // namespace tarvo::simulator::msfs
