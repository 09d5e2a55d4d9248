#include "fsd/pdu/AddPilot.h"

#include "common/Callsign.h"
#include "fsd/pdu/Fields.h"

namespace tarvo::fsd::pdu {

AddPilot AddPilot::parse(const QStringList &fields)
{
    fields::require(fields, 8, QLatin1StringView("AddPilot"));
    return {{fields[0], common::serverCallsign},
            fields[2],
            fields[3],
            toNetworkRating(fields[4]),
            toProtocolRevision(fields[5]),
            toSimulatorType(fields[6]),
            fields[7]};
}

QStringList AddPilot::serialize() const
{
    return {
        From,    common::serverCallsign, cid, password, toWire(rating), toWire(protocolRevision), toWire(simulatorType),
        realName};
}

} // namespace tarvo::fsd::pdu
