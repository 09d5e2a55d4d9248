#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// A pilot leaves, "#DP".
/// Wire: From : CID
struct DeletePilot : PduBase
{
    static constexpr QLatin1StringView identifier{"#DP"};

    QString cid; ///< empty when absent

    DeletePilot(QString from, QString cid);
    /// Throws PDUFormatException, "Invalid field count.", below 1 fields.
    static DeletePilot parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const DeletePilot &) const = default;
};

} // namespace tarvo::fsd::pdu
