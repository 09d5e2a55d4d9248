#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// The server asks the client to prove itself, "$ZC".
/// Wire: From : To : challenge
struct AuthChallenge : PduBase
{
    static constexpr QLatin1StringView identifier{"$ZC"};

    QString challenge;

    AuthChallenge(QString from, QString to, QString challenge);
    /// Throws PDUFormatException, "Invalid field count for AuthChallenge command.", below 3 fields.
    static AuthChallenge parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const AuthChallenge &) const = default;
};

} // namespace tarvo::fsd::pdu
