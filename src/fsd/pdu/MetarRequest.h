#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Asks for a weather report. Has no identifier and is never sent.
/// Wire: From : SERVER : METAR : station
struct MetarRequest : PduBase
{
    QString station; ///< ICAO airport

    MetarRequest(QString from, QString station);
    /// Throws PDUFormatException, "Invalid field count for MetarRequest command.", below 4 fields.
    static MetarRequest parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const MetarRequest &) const = default;
};

} // namespace tarvo::fsd::pdu
