#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// The server refuses something, "$ER".
/// Wire: From : To : error type : parameter : message
struct ProtocolError : PduBase
{
    static constexpr QLatin1StringView identifier{"$ER"};

    qint32 errorType{};
    QString parameter;
    QString message;

    ProtocolError(QString from, QString to, qint32 errorType, QString parameter, QString message);
    /// Throws PDUFormatException, "Invalid field count for ProtocolError command.", below 5 fields.
    static ProtocolError parse(const QStringList &fields);
    QStringList serialize() const;

    /// True for the error types that end a session.
    bool isFatal() const;

    bool operator==(const ProtocolError &) const = default;
};

} // namespace tarvo::fsd::pdu
