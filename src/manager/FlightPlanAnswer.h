#pragma once

#include <QString>
#include <QStringList>

namespace tarvo::manager {

/// What the answer to a flight plan query says. Servers write it in more than one way: by fields "KEY=value", or with
/// callsign and aircraft as the first two fields.
struct FlightPlanAnswer
{
    QString callsign; ///< upper-case; empty when it is not told
    QString type;     ///< not normalised yet; empty when it is not told

    /// Fields and their characters that are looked at. Real answers have fewer.
    static constexpr qsizetype maximumFields = 64;
    static constexpr qsizetype longestField = 256;

    /// Reads an answer of `from`. Any client but the server tells its own plan.
    static FlightPlanAnswer read(const QString &from, const QStringList &payload);
    bool isComplete() const { return !callsign.isEmpty() && !type.isEmpty(); }

    bool operator==(const FlightPlanAnswer &) const = default;
};

} // namespace tarvo::manager
