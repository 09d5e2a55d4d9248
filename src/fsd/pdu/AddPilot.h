#pragma once

#include "fsd/pdu/Enumerations.h"
#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Pilot login, "#AP"; also how the server tells of other pilots.
/// Wire: From : SERVER : CID : password : rating : protocol revision : simulator type : real name
struct AddPilot : PduBase
{
    static constexpr QLatin1StringView identifier{"#AP"};

    QString cid;
    QString password; ///< password or token; never logged
    NetworkRating rating{};
    ProtocolRevision protocolRevision{};
    SimulatorType simulatorType{};
    QString realName;

    /// Throws PDUFormatException, "Invalid field count for AddPilot command.", below 8 fields.
    static AddPilot parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const AddPilot &) const = default;
};

} // namespace tarvo::fsd::pdu
