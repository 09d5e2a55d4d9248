#include "fsd/pdu/KillRequest.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

KillRequest::KillRequest(QString from, QString to, QString reasonText)
    : PduBase{std::move(from), std::move(to)}, reason(std::move(reasonText))
{
}

KillRequest KillRequest::parse(const QStringList &fields)
{
    fields::require(fields, 2, QLatin1StringView("KillRequest"));
    return {fields[0], fields[1], fields.value(2)};
}

QStringList KillRequest::serialize() const
{
    return {From, To, reason};
}

} // namespace tarvo::fsd::pdu
