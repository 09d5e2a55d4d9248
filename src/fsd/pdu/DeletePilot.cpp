#include "fsd/pdu/DeletePilot.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

DeletePilot::DeletePilot(QString from, QString cidText) : PduBase{std::move(from), {}}, cid(std::move(cidText)) {}

DeletePilot DeletePilot::parse(const QStringList &fields)
{
    if (fields.isEmpty())
        fields::fail(fields, QStringLiteral("Invalid field count.")); // this one names no class
    return {fields[0], fields.value(1)};
}

QStringList DeletePilot::serialize() const
{
    return {From, cid};
}

} // namespace tarvo::fsd::pdu
