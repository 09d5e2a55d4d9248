#pragma once

#include "fsd/pdu/Enumerations.h"
#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// A pilot's slow full report, "@".
/// Wire: transponder mode (Y, N or S) : From : squawk : rating : latitude : longitude : true altitude : ground
///       speed : packed attitude : pressure difference
struct PilotPosition : PduBase
{
    static constexpr QLatin1StringView identifier{"@"};

    qint32 squawkCode{}; ///< the four digits as a decimal number, unpadded on the wire
    bool squawkingModeC{};
    bool identing{};
    NetworkRating rating{};
    double latitude{};         ///< degrees
    double longitude{};        ///< degrees
    qint32 trueAltitude{};     ///< feet
    qint32 pressureAltitude{}; ///< feet
    qint32 groundSpeed{};      ///< knots
    double pitch{};            ///< degrees
    double heading{};          ///< degrees
    double bank{};             ///< degrees
    bool onGround{};

    /// Throws PDUFormatException, "Invalid field count for PilotPosition command.", below 10 fields.
    static PilotPosition parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const PilotPosition &) const = default;
};

} // namespace tarvo::fsd::pdu
