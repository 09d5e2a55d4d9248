#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Answer to the greeting, "$ID".
/// Wire: From : To : client id (hex) : name : major : minor : CID : system id [: initial challenge]
struct ClientIdentification : PduBase
{
    static constexpr QLatin1StringView identifier{"$ID"};

    quint16 clientId{}; ///< lower-case hexadecimal on the wire
    QString clientName;
    int majorVersion{};
    int minorVersion{};
    QString cid;
    QString systemUniqueId;
    QString initialChallenge; ///< written only when not empty

    /// Throws PDUFormatException, "Invalid field count for ClientIdentification command.", below 8 fields.
    static ClientIdentification parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const ClientIdentification &) const = default;
};

} // namespace tarvo::fsd::pdu
