#include "fsd/pdu/AddATC.h"

#include "common/Callsign.h"
#include "fsd/pdu/Fields.h"

#include <utility>

namespace tarvo::fsd::pdu {

AddATC::AddATC(QString from, QString name, QString cidText, QString secret, NetworkRating networkRating,
               ProtocolRevision revision)
    : PduBase{std::move(from), common::serverCallsign},
      realName(std::move(name)),
      cid(std::move(cidText)),
      password(std::move(secret)),
      rating(networkRating),
      protocolRevision(revision)
{
}

AddATC AddATC::parse(const QStringList &fields)
{
    fields::require(fields, 6, QLatin1StringView("AddATC"));
    // Six fields are enough although the revision is the seventh.
    return {
        fields[0], fields[2], fields[3], fields[4], toNetworkRating(fields[5]), toProtocolRevision(fields.value(6))};
}

QStringList AddATC::serialize() const
{
    return {From, common::serverCallsign, realName, cid, password, toWire(rating), toWire(protocolRevision)};
}

} // namespace tarvo::fsd::pdu
