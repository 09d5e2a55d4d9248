#pragma once

#include <QString>

namespace tarvo::model {

/// Under what name and how a session is on the network.
struct ConnectInfo
{
    QString callsign; ///< upper-case
    QString typeCode; ///< ICAO type designator; may be empty for an observer
    QString selcal;   ///< as the pilot typed it
    bool observer = false;

    bool operator==(const ConnectInfo &) const = default;
};

} // namespace tarvo::model
