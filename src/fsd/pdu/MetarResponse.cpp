#include "fsd/pdu/MetarResponse.h"

#include "common/Callsign.h"
#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

MetarResponse::MetarResponse(QString to, QString text)
    : PduBase{common::serverCallsign, std::move(to)}, metar(std::move(text))
{
}

MetarResponse MetarResponse::parse(const QStringList &fields)
{
    fields::require(fields, 4, QLatin1StringView("MetarResponse"));
    return {fields[1], fields[3]}; // the sender is the server, whatever the line says
}

QStringList MetarResponse::serialize() const
{
    return {From, To, metar}; // one field fewer than is read
}

} // namespace tarvo::fsd::pdu
