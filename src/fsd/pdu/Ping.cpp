#include "fsd/pdu/Ping.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

Ping::Ping(QString from, QString to, QString timestampText)
    : PduBase{std::move(from), std::move(to)}, timestamp(std::move(timestampText))
{
}

Ping Ping::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("Ping"));
    return {fields[0], fields[1], fields[2]};
}

QStringList Ping::serialize() const
{
    return {From, To, timestamp};
}

} // namespace tarvo::fsd::pdu
