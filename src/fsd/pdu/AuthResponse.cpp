#include "fsd/pdu/AuthResponse.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

AuthResponse::AuthResponse(QString from, QString to, QString responseText)
    : PduBase{std::move(from), std::move(to)}, response(std::move(responseText))
{
}

AuthResponse AuthResponse::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("AuthResponse"));
    return {fields[0], fields[1], fields[2]};
}

QStringList AuthResponse::serialize() const
{
    return {From, To, response};
}

} // namespace tarvo::fsd::pdu
