#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Answer to a Ping, "$PO".
/// Wire: From : To : timestamp
struct Pong : PduBase
{
    static constexpr QLatin1StringView identifier{"$PO"};

    QString timestamp; ///< copied from the Ping

    Pong(QString from, QString to, QString timestamp);
    /// Throws PDUFormatException, "Invalid field count for Pong command.", below 3 fields.
    static Pong parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const Pong &) const = default;
};

} // namespace tarvo::fsd::pdu
