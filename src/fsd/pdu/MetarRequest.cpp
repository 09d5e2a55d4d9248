#include "fsd/pdu/MetarRequest.h"

#include "common/Callsign.h"
#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

MetarRequest::MetarRequest(QString from, QString stationName)
    : PduBase{std::move(from), common::serverCallsign}, station(std::move(stationName))
{
}

MetarRequest MetarRequest::parse(const QStringList &fields)
{
    fields::require(fields, 4, QLatin1StringView("MetarRequest"));
    MetarRequest request(fields[0], fields[3]);
    request.To = fields[1];
    return request;
}

QStringList MetarRequest::serialize() const
{
    return {From, To, QStringLiteral("METAR"), station};
}

} // namespace tarvo::fsd::pdu
