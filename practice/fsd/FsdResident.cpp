#include "practice/fsd/FsdResident.h"

#include "fsd/pdu/AddATC.h"
#include "fsd/pdu/AddPilot.h"
#include "fsd/pdu/FsdLine.h"

namespace tarvo::practice {

using fsd::pdu::NetworkRating;
using fsd::pdu::ProtocolRevision;

FsdIdentity FsdResident::pilot(const QString &callsign, const QString &cid, const QString &realName)
{
    fsd::pdu::AddPilot pdu;
    pdu.From = callsign;
    pdu.cid = cid;
    pdu.rating = NetworkRating::Observer;
    pdu.protocolRevision = ProtocolRevision::Classic;
    pdu.realName = realName;
    return {callsign, cid, realName, false, fsd::toLine(pdu)};
}

FsdIdentity FsdResident::controller(const QString &callsign, const QString &cid, const QString &realName)
{
    const fsd::pdu::AddATC pdu(callsign, realName, cid, {}, NetworkRating::Observer, ProtocolRevision::Classic);
    return {callsign, cid, realName, true, fsd::toLine(pdu)};
}

} // namespace tarvo::practice
