#include "simulator/msfs/library/AircraftConfig.h"

#include "simulator/msfs/library/ForeignText.h"

#include <QByteArrayView>
#include <QHash>

#include <algorithm>
#include <optional>

namespace tarvo::simulator::msfs {

namespace {

struct KnownKey
{
    QByteArrayView text;
    AircraftKey key;
};

constexpr KnownKey knownKeys[] = {
    {"title", AircraftKey::Title},
    {"ui_manufacturer", AircraftKey::UiManufacturer},
    {"ui_type", AircraftKey::UiType},
    {"ui_variation", AircraftKey::UiVariation},
    {"atc_airline", AircraftKey::AtcAirline},
    {"isairtraffic", AircraftKey::IsAirTraffic},
    {"isuserselectable", AircraftKey::IsUserSelectable},
    {"icao_type_designator", AircraftKey::IcaoTypeDesignator},
    {"icao_manufacturer", AircraftKey::IcaoManufacturer},
    {"icao_model", AircraftKey::IcaoModel},
    {"icao_engine_type", AircraftKey::IcaoEngineType},
    {"icao_wtc", AircraftKey::IcaoWakeCategory},
    {"category", AircraftKey::Category},
    {"icao_engine_count", AircraftKey::IcaoEngineCount},
    {"base_container", AircraftKey::BaseContainer},
};

std::optional<AircraftKey> keyOf(QByteArrayView text)
{
    for (const KnownKey &known : knownKeys) {
        if (known.text.size() == text.size() && known.text.compare(text, Qt::CaseInsensitive) == 0)
            return known.key;
    }
    return std::nullopt;
}

QByteArrayView withoutRemark(QByteArrayView line)
{
    if (!line.contains(';'))
        return line;
    bool quoted = false;
    for (qsizetype at = 0; at < line.size(); ++at) {
        if (line[at] == '"')
            quoted = !quoted;
        else if (line[at] == ';' && !quoted)
            return line.first(at);
    }
    return line;
}

bool isOfUse(const AircraftSection &section)
{
    return section.isVariant() || section.name() == QLatin1String("GENERAL") ||
           section.name() == QLatin1String("VARIATION");
}

/// Puts a file together from its lines.
class Reading
{
public:
    void take(QByteArrayView line)
    {
        line = withoutRemark(line).trimmed();
        // What stands behind the last bracket is ignored.
        if (const qsizetype end = line.lastIndexOf(']'); line.startsWith('[') && end > 0)
            open(textOf(line.sliced(1, end - 1)).trimmed().toUpper());
        else
            assign(line);
    }

    bool isInSection() const { return m_current.has_value(); }

    AircraftConfig config;

private:
    void open(const QString &name)
    {
        m_current.reset();
        AircraftSection section(name);
        if (!isOfUse(section))
            return;
        if (const auto known = m_places.constFind(name); known != m_places.cend()) {
            m_current = *known;
            return;
        }
        m_current = config.sections.size();
        m_places.insert(name, *m_current);
        config.sections.push_back(std::move(section));
    }

    void assign(QByteArrayView line)
    {
        const qsizetype sign = line.indexOf('=');
        if (sign < 0 || !m_current)
            return;
        if (const auto key = keyOf(line.first(sign).trimmed()))
            config.sections[*m_current].set(*key, textOf(withoutQuotes(line.sliced(sign + 1))).simplified());
    }

    std::optional<std::size_t> m_current; ///< nothing in a section that nobody reads
    QHash<QString, std::size_t> m_places;
};

} // namespace

const QString *AircraftSection::find(AircraftKey key) const
{
    const auto found =
        std::find_if(m_values.begin(), m_values.end(), [key](const auto &pair) { return pair.first == key; });
    return found == m_values.end() ? nullptr : &found->second;
}

QString AircraftSection::value(AircraftKey key) const
{
    const QString *found = find(key);
    return found ? *found : QString();
}

bool AircraftSection::flag(AircraftKey key, bool defaultValue) const
{
    const QString *found = find(key);
    if (!found)
        return defaultValue;
    const QString upper = found->toUpper();
    return upper == QLatin1String("1") || upper == QLatin1String("Y") || upper == QLatin1String("TRUE") ||
           upper == QLatin1String("YES");
}

void AircraftSection::set(AircraftKey key, const QString &value)
{
    for (auto &[known, held] : m_values) {
        if (known == key) {
            held = value;
            return;
        }
    }
    m_values.emplace_back(key, value);
}

const AircraftSection *AircraftConfig::find(QStringView name) const
{
    const auto found = std::find_if(sections.begin(), sections.end(),
                                    [name](const AircraftSection &section) { return section.name() == name; });
    return found == sections.end() ? nullptr : &*found;
}

AircraftConfig parseAircraftConfig(const QByteArray &bytes)
{
    const QByteArray text = withAsciiSigns(bytes);
    const QByteArrayView all(text);
    Reading reading;
    for (qsizetype at = 0; at < all.size();) {
        if (!reading.isInSection()) { // most lines of an old file are of sections that nobody reads
            const qsizetype bracket = all.indexOf('[', at);
            if (bracket < 0)
                break;
            at += all.sliced(at, bracket - at).lastIndexOf('\n') + 1;
        }
        const qsizetype found = all.indexOf('\n', at);
        const qsizetype end = found < 0 ? all.size() : found;
        reading.take(all.sliced(at, end - at));
        at = end + 1;
    }
    return std::move(reading.config);
}

} // namespace tarvo::simulator::msfs
