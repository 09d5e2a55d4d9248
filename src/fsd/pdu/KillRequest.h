#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// The server throws the client out, "$!!".
/// Wire: From : To : reason
struct KillRequest : PduBase
{
    static constexpr QLatin1StringView identifier{"$!!"};

    QString reason; ///< one field; empty when absent

    KillRequest(QString from, QString to, QString reason);
    /// Throws PDUFormatException, "Invalid field count for KillRequest command.", below 2 fields.
    static KillRequest parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const KillRequest &) const = default;
};

} // namespace tarvo::fsd::pdu
