#include "fsd/pdu/ChangeServer.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

ChangeServer::ChangeServer(QString from, QString to, QString newServerText)
    : PduBase{std::move(from), std::move(to)}, newServer(std::move(newServerText))
{
}

ChangeServer ChangeServer::parse(const QStringList &fields)
{
    fields::require(fields, 3, QLatin1StringView("ChangeServer"));
    return {fields[0], fields[1], fields[2]};
}

QStringList ChangeServer::serialize() const
{
    return {From, To, newServer};
}

} // namespace tarvo::fsd::pdu
