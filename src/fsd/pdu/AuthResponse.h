#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Answer to a challenge, "$ZR"; only ever sent.
/// Wire: From : To : response
struct AuthResponse : PduBase
{
    static constexpr QLatin1StringView identifier{"$ZR"};

    QString response;

    AuthResponse(QString from, QString to, QString response);
    /// Throws PDUFormatException, "Invalid field count for AuthResponse command.", below 3 fields.
    static AuthResponse parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const AuthResponse &) const = default;
};

} // namespace tarvo::fsd::pdu
