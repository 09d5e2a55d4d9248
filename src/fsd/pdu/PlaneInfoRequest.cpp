#include "fsd/pdu/PlaneInfoRequest.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

PlaneInfoRequest::PlaneInfoRequest(QString from, QString to) : PduBase{std::move(from), std::move(to)} {}

PlaneInfoRequest PlaneInfoRequest::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("PlaneInfoRequest"));
    return {fields[0], fields[1]};
}

QStringList PlaneInfoRequest::serialize() const
{
    return {From, To, QStringLiteral("PIR")};
}

} // namespace tarvo::fsd::pdu
