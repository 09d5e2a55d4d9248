#pragma once

#include "fsd/pdu/FastPilotPosition.h"

#include <QString>
#include <QStringList>

namespace tarvo::fsd {

/// One finished line: the identifier directly followed by the fields joined with ":", and the line end.
inline QString formatLine(QLatin1StringView identifier, const QStringList &fields)
{
    return identifier + fields.join(QLatin1Char(':')) + QLatin1StringView("\r\n");
}

/// The line of a PDU that has one identifier.
template <class Pdu>
QString toLine(const Pdu &pdu)
{
    return formatLine(Pdu::identifier, pdu.serialize());
}

inline QString toLine(const pdu::FastPilotPosition &pdu)
{
    return formatLine(pdu::FastPilotPosition::identifierOf(pdu.type), pdu.serialize());
}

} // namespace tarvo::fsd
