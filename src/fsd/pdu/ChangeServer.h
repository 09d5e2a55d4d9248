#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// The server sends the client elsewhere, "$XX".
/// Wire: From : To : new server
struct ChangeServer : PduBase
{
    static constexpr QLatin1StringView identifier{"$XX"};

    QString newServer; ///< host name or address

    ChangeServer(QString from, QString to, QString newServer);
    /// Throws PDUFormatException, "Invalid field count for ChangeServer command.", below 3 fields.
    static ChangeServer parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const ChangeServer &) const = default;
};

} // namespace tarvo::fsd::pdu
