#include "fsd/pdu/DeleteATC.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

DeleteATC::DeleteATC(QString from, QString cidText) : PduBase{std::move(from), {}}, cid(std::move(cidText)) {}

DeleteATC DeleteATC::parse(const QStringList &fields)
{
    fields::require(fields, 1, QLatin1StringView("DeleteATC"));
    return {fields[0], fields.value(1)};
}

QStringList DeleteATC::serialize() const
{
    return {From, cid};
}

} // namespace tarvo::fsd::pdu
