#include "fsd/pdu/FlightPlan.h"

#include "fsd/pdu/Fields.h"

namespace tarvo::fsd::pdu {

FlightPlan FlightPlan::parse(const QStringList &fields)
{
    fields::require(fields, 17, QLatin1StringView("FlightPlan"));
    return {{fields[0], fields[1]},
            fields[2],
            fields[3],
            fields[4],
            fields[5],
            fields[6],
            fields[7],
            fields[8],
            fields[9],
            fields[10],
            fields[11],
            fields[12],
            fields[13],
            fields[14],
            fields[15],
            fields::joinFrom(fields, 16)};
}

QStringList FlightPlan::serialize() const
{
    return {From,
            To,
            flightRules,
            aircraftType,
            trueAirspeed,
            departureAirport,
            estimatedDepartureTime,
            actualDepartureTime,
            cruiseAltitude,
            destinationAirport,
            enrouteHours,
            enrouteMinutes,
            fuelHours,
            fuelMinutes,
            alternateAirport,
            remarks,
            route};
}

} // namespace tarvo::fsd::pdu
