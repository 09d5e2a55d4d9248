#include "fsd/pdu/ServerIdentification.h"

#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

ServerIdentification::ServerIdentification(QString from, QString to, QString versionText, QString challenge)
    : PduBase{std::move(from), std::move(to)}, version(std::move(versionText)), initialChallenge(std::move(challenge))
{
}

ServerIdentification ServerIdentification::parse(const QStringList &fields)
{
    fields::require(fields, 4, QLatin1StringView("ServerIdentification"));
    return {fields[0], fields[1], fields[2], fields[3]};
}

QStringList ServerIdentification::serialize() const
{
    return {From, To, version, initialChallenge};
}

} // namespace tarvo::fsd::pdu
