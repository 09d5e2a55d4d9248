#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// A filed flight plan, "$FP". Every field is text; nothing is checked.
/// Wire: From : To : the fields below in order
struct FlightPlan : PduBase
{
    static constexpr QLatin1StringView identifier{"$FP"};

    QString flightRules;
    QString aircraftType;
    QString trueAirspeed;
    QString departureAirport;
    QString estimatedDepartureTime;
    QString actualDepartureTime;
    QString cruiseAltitude;
    QString destinationAirport;
    QString enrouteHours;
    QString enrouteMinutes;
    QString fuelHours;
    QString fuelMinutes;
    QString alternateAirport;
    QString remarks;
    QString route; ///< all fields from here on, colons and all

    /// Throws PDUFormatException, "Invalid field count for FlightPlan command.", below 17 fields.
    static FlightPlan parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const FlightPlan &) const = default;
};

} // namespace tarvo::fsd::pdu
