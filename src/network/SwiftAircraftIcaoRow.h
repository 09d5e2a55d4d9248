#pragma once

#include <QString>

namespace tarvo::network {

/// One aircraft type of the database.
struct SwiftAircraftIcaoRow
{
    qint64 id = 0;
    QString designator; ///< ICAO type designator, such as "B738"
    QString manufacturer;
    QString model;
    QString type; ///< description such as "L2J"
    QString engine;
    int engineCount = 0;
    QString wakeTurbulenceCategory;
    int rank = 0;
    bool realWorld = false;
    bool legacy = false;
    bool military = false;
    QString created;
    QString lastUpdated;

    bool operator==(const SwiftAircraftIcaoRow &) const = default;
};

/// What normalize() made of a text.
struct SwiftAircraftIcaoResult
{
    QString text;       ///< as given
    QString canonical;  ///< the designator, or the trimmed upper-cased text when not found
    bool exact = false; ///< the trimmed upper-cased text was itself the designator
    bool found = false;

    bool operator==(const SwiftAircraftIcaoResult &) const = default;
};

} // namespace tarvo::network
