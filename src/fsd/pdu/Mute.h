#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// The server mutes or unmutes the client, "#MU".
/// Wire: reading From : To : flag; writing To : From : flag
struct Mute : PduBase
{
    static constexpr QLatin1StringView identifier{"#MU"};

    bool mute{}; ///< true when the field is "1"

    Mute(QString from, QString to, bool mute);
    /// Throws PDUFormatException, "Invalid field count for Mute command.", below 3 fields.
    static Mute parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const Mute &) const = default;
};

} // namespace tarvo::fsd::pdu
