#pragma once

#include <QString>

#include <optional>

namespace tarvo::practice {

/// Who a logged-in client is.
struct FsdIdentity
{
    QString callsign; ///< upper case
    QString cid;
    QString realName;
    bool observer = false; ///< logged in with "#AA"
    QString announcement;  ///< his login line as the others get it: without the password
};

struct FsdPosition
{
    double latitude = 0;  ///< degrees
    double longitude = 0; ///< degrees
};

/// What the server knows of a client, be it connected or a resident.
struct FsdClientRecord
{
    std::optional<FsdIdentity> identity; ///< nothing before the login
    std::optional<FsdPosition> position;
    QString flightPlan;           ///< the "$FP" line as filed; empty without one
    QString aircraftType;         ///< of the flight plan
    double visibilityRangeNm = 0; ///< of a controller
    int facility = 0;             ///< of a controller; 0 is an observer
    bool fast = false;            ///< told to send fast positions
    bool inCrowd = false;         ///< a resident that is one of very many
};

} // namespace tarvo::practice
