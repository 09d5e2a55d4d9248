#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Text to the supervisors, "#TM". Refuses a text with a colon when read: kept on purpose.
/// Wire: From : *S : message
struct Wallop : PduBase
{
    static constexpr QLatin1StringView identifier{"#TM"};

    QString message;

    Wallop(QString from, QString message);
    /// Throws PDUFormatException, "Invalid field count for Wallop command.", unless there are exactly 3 fields.
    static Wallop parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const Wallop &) const = default;
};

} // namespace tarvo::fsd::pdu
