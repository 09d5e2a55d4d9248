#pragma once

#include "fsd/pdu/Enumerations.h"
#include "fsd/pdu/PduBase.h"

#include <QList>
#include <QStringList>

namespace tarvo::fsd::pdu {

/// A controller's or observer's report, "%".
/// Wire: From : frequencies joined with & : facility : visibility range : rating : latitude : longitude : 0
struct ATCPosition : PduBase
{
    static constexpr QLatin1StringView identifier{"%"};

    QList<quint32>
        frequencies; ///< kHz when read (100000 added); written as handed in, so a writer gives the short form
    NetworkFacility facility{};
    qint32 visibilityRange{}; ///< nautical miles
    NetworkRating rating{};
    double latitude{};  ///< degrees
    double longitude{}; ///< degrees

    /// Throws PDUFormatException, "Invalid field count for AtcPosition command.", below 7 fields.
    static ATCPosition parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const ATCPosition &) const = default;
};

} // namespace tarvo::fsd::pdu
