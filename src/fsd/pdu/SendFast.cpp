#include "fsd/pdu/SendFast.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

SendFast::SendFast(QString from, QString to, bool fast) : PduBase{std::move(from), std::move(to)}, sendFast(fast) {}

SendFast SendFast::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("SendFast"));
    return {fields[0], fields[1], fields::toInt32(fields[2]) != 0};
}

QStringList SendFast::serialize() const
{
    return {From, To, QString::number(sendFast ? 1 : 0)};
}

} // namespace tarvo::fsd::pdu
