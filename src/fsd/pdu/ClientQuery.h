#pragma once

#include "fsd/pdu/ClientQueryType.h"
#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// A question to a client or to the server, "$CQ".
/// Wire: From : To : type : payload...
struct ClientQuery : PduBase
{
    static constexpr QLatin1StringView identifier{"$CQ"};

    ClientQueryType queryType{};
    QStringList payload; ///< the fields from the fourth on

    ClientQuery(QString from, QString to, ClientQueryType queryType, QStringList payload);
    /// Throws PDUFormatException, "Invalid field count for ClientQuery command.", below 3 fields.
    static ClientQuery parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const ClientQuery &) const = default;
};

} // namespace tarvo::fsd::pdu
