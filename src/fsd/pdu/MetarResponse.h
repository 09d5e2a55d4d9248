#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// A weather report, "$AR". Reads one field more than it writes: the word METAR in between is not kept.
/// Wire: reading SERVER : To : METAR : text; writing From : To : text
struct MetarResponse : PduBase
{
    static constexpr QLatin1StringView identifier{"$AR"};

    QString metar;

    MetarResponse(QString to, QString metar);
    /// Throws PDUFormatException, "Invalid field count for MetarResponse command.", below 4 fields.
    static MetarResponse parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const MetarResponse &) const = default;
};

} // namespace tarvo::fsd::pdu
