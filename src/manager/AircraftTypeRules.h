#pragma once

#include <QHash>
#include <QString>

namespace tarvo::network {
class SwiftAircraftIcaoService;
}

namespace tarvo::manager {

/// The designator that the type data find in a free text; empty when they find none or are not loaded.
QString knownDesignator(const network::SwiftAircraftIcaoService &icao, const QString &text);

/// Makes a type code of a free text that the type data don't know: its first run of two to four letters and digits,
/// else its first four characters; "ZZZZ" for an empty text.
QString typeCodeFromText(const QString &text);

/// The type in a flight plan's aircraft field, such as B744 in "H/B744/L"; empty for an empty field. A field of
/// separators alone gives a blank, which counts as a type.
QString typeFromFlightPlan(const QString &aircraftField);

/// The three letters in front of a flight number, such as CCA in "CCA1234"; empty when the callsign is none.
QString airlineOfCallsign(const QString &callsign);

/// Brings other pilots' type texts into one form. Remembers what it has found: the same texts come with every position.
class TypeNormalizer
{
public:
    /// Longer texts are cut: no type is that long, and a search costs more than twice as much in a text twice as long.
    static constexpr qsizetype longestText = 256;
    /// Texts that are remembered.
    static constexpr qsizetype maximumRemembered = 1024;

    explicit TypeNormalizer(const network::SwiftAircraftIcaoService &icao) : m_icao(icao) {}

    /// The designator that the type data find, else what typeCodeFromText() makes of it. Never empty.
    QString normalized(const QString &text);

private:
    const network::SwiftAircraftIcaoService &m_icao;
    QHash<QString, QString> m_remembered;
    bool m_rememberedReady = false; ///< the type data were there when the texts were looked up
};

} // namespace tarvo::manager
