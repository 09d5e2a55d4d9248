#pragma once

#include <QString>

namespace tarvo::model {

/// A station in reach, as texts. Its name for the meta-type system is "model::NearbyAtc".
struct NearbyAtc
{
    QString callsign;  ///< upper-case
    QString frequency; ///< MHz, three decimals
    QString name;      ///< empty while unknown

    bool operator==(const NearbyAtc &) const = default;
};

} // namespace tarvo::model
