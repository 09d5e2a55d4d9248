#pragma once

#include <QByteArray>
#include <QString>

#include <utility>
#include <vector>

namespace tarvo::simulator::msfs {

/// The keys of an aircraft.cfg that the library reads.
enum class AircraftKey : quint8
{
    Title,
    UiManufacturer,
    UiType,
    UiVariation,
    AtcAirline,
    IsAirTraffic,
    IsUserSelectable,
    IcaoTypeDesignator,
    IcaoManufacturer,
    IcaoModel,
    IcaoEngineType,
    IcaoWakeCategory,
    Category,
    IcaoEngineCount,
    BaseContainer,
};

/// One section of an aircraft.cfg. A key that is written twice has its last value.
class AircraftSection
{
public:
    explicit AircraftSection(QString name) : m_name(std::move(name)) {}

    /// Upper-case, without its brackets.
    const QString &name() const { return m_name; }
    /// True for "FLTSIM.0" and its like.
    bool isVariant() const { return m_name.startsWith(QLatin1String("FLTSIM.")); }
    /// Without quotes, white space made one blank each; empty for a missing key.
    QString value(AircraftKey key) const;
    /// "1", "Y", "TRUE" and "YES" are true in any case; a missing key has the default.
    bool flag(AircraftKey key, bool defaultValue) const;
    void set(AircraftKey key, const QString &value);

private:
    const QString *find(AircraftKey key) const;

    QString m_name;
    std::vector<std::pair<AircraftKey, QString>> m_values; ///< a handful
};

/// What the library reads of an aircraft.cfg: the sections GENERAL and VARIATION and those whose name begins with
/// "FLTSIM.", in the file's order, each once, with the keys told above.
struct AircraftConfig
{
    std::vector<AircraftSection> sections;

    /// Null when there is no such section. `name`: upper-case.
    const AircraftSection *find(QStringView name) const;
};

/// Reads the bytes of an aircraft.cfg. What can't be understood is left out.
AircraftConfig parseAircraftConfig(const QByteArray &bytes);

} // namespace tarvo::simulator::msfs
