#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace tarvo::manager {

/// The lines of each ATIS that was asked for, until its last has come. Callsigns are upper-case.
class AtisBuffers
{
public:
    /// Far above any real ATIS; what a server sends beyond these is dropped.
    static constexpr qsizetype maximumLines = 200;
    static constexpr qsizetype maximumCharacters = 64 * 1024;
    /// Stations that are remembered. One that never answers is forgotten when so many others were asked since.
    static constexpr qsizetype maximumStations = 500;

    /// The station's lines begin, or begin anew. Nothing for a callsign too long to be one.
    void begin(const QString &callsign);
    /// Adds a line; one of a station that nobody asked is dropped.
    void append(const QString &callsign, const QString &line);
    /// Ends the station's ATIS and gives its lines; nothing when nobody asked for it.
    std::optional<QStringList> take(const QString &callsign);

private:
    struct Buffer
    {
        QStringList lines;
        qsizetype characters = 0; ///< in `lines`
        quint64 order = 0;        ///< the lowest was asked longest ago
    };
    using Buffers = QMap<QString, Buffer>;

    Buffers::iterator longestAgo();

    Buffers m_buffers;
    quint64 m_lastOrder = 0;
};

} // namespace tarvo::manager
