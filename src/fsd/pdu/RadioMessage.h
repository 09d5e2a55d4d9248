#pragma once

#include "fsd/pdu/PduBase.h"

#include <QList>
#include <QStringList>

namespace tarvo::fsd::pdu {

/// Text on frequencies, "#TM".
/// Wire: From : @18500&@21700 : message, colons and all
struct RadioMessage : PduBase
{
    static constexpr QLatin1StringView identifier{"#TM"};

    QList<quint32> frequencies; ///< kHz, such as 118500; on the wire "@" and the value less 100000
    QString message;

    RadioMessage(QString from, QList<quint32> frequencies, QString message);
    /// Throws PDUFormatException, "Invalid field count for RadioMessage message.", below 3 fields.
    static RadioMessage parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const RadioMessage &) const = default;
};

} // namespace tarvo::fsd::pdu
