#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// A controller or observer leaves, "#DA".
/// Wire: From : CID
struct DeleteATC : PduBase
{
    static constexpr QLatin1StringView identifier{"#DA"};

    QString cid; ///< empty when absent

    DeleteATC(QString from, QString cid);
    /// Throws PDUFormatException, "Invalid field count for DeleteATC command.", below 1 fields.
    static DeleteATC parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const DeleteATC &) const = default;
};

} // namespace tarvo::fsd::pdu
