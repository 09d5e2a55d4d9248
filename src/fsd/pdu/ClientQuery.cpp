#include "fsd/pdu/ClientQuery.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

ClientQuery::ClientQuery(QString from, QString to, ClientQueryType type, QStringList payloadFields)
    : PduBase{std::move(from), std::move(to)}, queryType(type), payload(std::move(payloadFields))
{
}

ClientQuery ClientQuery::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("ClientQuery"));
    return {fields[0], fields[1], toClientQueryType(fields[2]), fields.sliced(3)};
}

QStringList ClientQuery::serialize() const
{
    return QStringList{From, To, tokenOf(queryType)} + payload;
}

} // namespace tarvo::fsd::pdu
