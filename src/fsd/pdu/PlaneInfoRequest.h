#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Asks another pilot for his aircraft, "#SB".
/// Wire: From : To : PIR
struct PlaneInfoRequest : PduBase
{
    static constexpr QLatin1StringView identifier{"#SB"};

    PlaneInfoRequest(QString from, QString to);
    /// Throws PDUFormatException, "Invalid field count for PlaneInfoRequest command.", below 3 fields.
    static PlaneInfoRequest parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const PlaneInfoRequest &) const = default;
};

} // namespace tarvo::fsd::pdu
