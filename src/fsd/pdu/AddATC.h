#pragma once

#include "fsd/pdu/Enumerations.h"
#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Controller or observer login, "#AA".
/// Wire: From : SERVER : real name : CID : password : rating : protocol revision
struct AddATC : PduBase
{
    static constexpr QLatin1StringView identifier{"#AA"};

    QString realName;
    QString cid;
    QString password; ///< password or token; never logged
    NetworkRating rating{};
    ProtocolRevision protocolRevision{}; ///< read as unknown when the line has only six fields

    AddATC(QString from, QString realName, QString cid, QString password, NetworkRating rating,
           ProtocolRevision protocolRevision);
    /// Throws PDUFormatException, "Invalid field count for AddATC command.", below 6 fields.
    static AddATC parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const AddATC &) const = default;
};

} // namespace tarvo::fsd::pdu
