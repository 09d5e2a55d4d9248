#include "fsd/pdu/Pong.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

Pong::Pong(QString from, QString to, QString timestampText)
    : PduBase{std::move(from), std::move(to)}, timestamp(std::move(timestampText))
{
}

Pong Pong::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("Pong"));
    return {fields[0], fields[1], fields[2]};
}

QStringList Pong::serialize() const
{
    return {From, To, timestamp};
}

} // namespace tarvo::fsd::pdu
