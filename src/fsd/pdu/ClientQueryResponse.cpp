#include "fsd/pdu/ClientQueryResponse.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

ClientQueryResponse::ClientQueryResponse(QString from, QString to, ClientQueryType type, QStringList payloadFields)
    : PduBase{std::move(from), std::move(to)}, queryType(type), payload(std::move(payloadFields))
{
}

ClientQueryResponse ClientQueryResponse::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("ClientQueryResponse"));
    return {fields[0], fields[1], toClientQueryType(fields[2]), fields.sliced(3)};
}

QStringList ClientQueryResponse::serialize() const
{
    return QStringList{From, To, tokenOf(queryType)} + payload;
}

} // namespace tarvo::fsd::pdu
