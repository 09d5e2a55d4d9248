#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Server greeting, "$DI": the first line of a session.
/// Wire: From : To : version : initial challenge
struct ServerIdentification : PduBase
{
    static constexpr QLatin1StringView identifier{"$DI"};

    QString version;
    QString initialChallenge;

    ServerIdentification(QString from, QString to, QString version, QString initialChallenge);
    /// Throws PDUFormatException, "Invalid field count for ServerIdentification command.", below 4 fields.
    static ServerIdentification parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const ServerIdentification &) const = default;
};

} // namespace tarvo::fsd::pdu
