#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// The server asks for fast positions, or no longer, "$SF".
/// Wire: From : To : 1 or 0
struct SendFast : PduBase
{
    static constexpr QLatin1StringView identifier{"$SF"};

    bool sendFast{}; ///< any non-zero number reads as true

    SendFast(QString from, QString to, bool sendFast);
    /// Throws PDUFormatException, "Invalid field count for SendFast command.", below 3 fields.
    static SendFast parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const SendFast &) const = default;
};

} // namespace tarvo::fsd::pdu
