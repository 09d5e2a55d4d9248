#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Text to one receiver, "#TM".
/// Wire: From : To : message, colons and all
struct TextMessage : PduBase
{
    static constexpr QLatin1StringView identifier{"#TM"};

    QString message;

    TextMessage(QString from, QString to, QString message);
    /// Throws PDUFormatException, "Invalid field count for TextMessage command.", below 3 fields.
    static TextMessage parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const TextMessage &) const = default;
};

} // namespace tarvo::fsd::pdu
