#include "fsd/pdu/BroadcastMessage.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

BroadcastMessage::BroadcastMessage(QString from, QString text)
    : PduBase{std::move(from), QStringLiteral("*")}, message(std::move(text))
{
}

BroadcastMessage BroadcastMessage::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("BroadcastMessage"));
    BroadcastMessage broadcast(fields[0], fields::joinFrom(fields, 2));
    broadcast.To = fields[1]; // "*A" and "*P" come in too
    return broadcast;
}

QStringList BroadcastMessage::serialize() const
{
    return {From, QStringLiteral("*"), message}; // whatever group it was read with
}

} // namespace tarvo::fsd::pdu
