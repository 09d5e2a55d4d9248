#pragma once

#include <QString>

namespace tarvo::fsd::pdu {

/// What every PDU has: who sent it and whom it is for.
struct PduBase
{
    QString From; ///< callsign, or "SERVER"
    QString To;   ///< callsign, "SERVER" or a pseudo-callsign; empty for positions

    bool operator==(const PduBase &) const = default;
};

} // namespace tarvo::fsd::pdu
