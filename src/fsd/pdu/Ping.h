#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Keep-alive, "$PI". The receiver answers with a Pong that copies the time stamp.
/// Wire: From : To : timestamp
struct Ping : PduBase
{
    static constexpr QLatin1StringView identifier{"$PI"};

    QString timestamp; ///< opaque to the receiver

    Ping(QString from, QString to, QString timestamp);
    /// Throws PDUFormatException, "Invalid field count for Ping command.", below 3 fields.
    static Ping parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const Ping &) const = default;
};

} // namespace tarvo::fsd::pdu
