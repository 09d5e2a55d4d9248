#pragma once

#include "fsd/pdu/ClientQueryType.h"
#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Answer to a ClientQuery, "$CR".
/// Wire: From : To : type : payload...
struct ClientQueryResponse : PduBase
{
    static constexpr QLatin1StringView identifier{"$CR"};

    ClientQueryType queryType{};
    QStringList payload; ///< the fields from the fourth on

    ClientQueryResponse(QString from, QString to, ClientQueryType queryType, QStringList payload);
    /// Throws PDUFormatException, "Invalid field count for ClientQueryResponse command.", below 3 fields.
    static ClientQueryResponse parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const ClientQueryResponse &) const = default;
};

} // namespace tarvo::fsd::pdu
