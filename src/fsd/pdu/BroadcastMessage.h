#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Text to everybody, "#TM".
/// Wire: From : * : message, colons and all
struct BroadcastMessage : PduBase
{
    static constexpr QLatin1StringView identifier{"#TM"};

    QString message;

    BroadcastMessage(QString from, QString message);
    /// Throws PDUFormatException, "Invalid field count for BroadcastMessage command.", below 3 fields.
    static BroadcastMessage parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const BroadcastMessage &) const = default;
};

} // namespace tarvo::fsd::pdu
