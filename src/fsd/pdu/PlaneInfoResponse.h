#pragma once

#include "fsd/pdu/PduBase.h"

#include <QStringList>

namespace tarvo::fsd::pdu {

/// Tells another pilot the own aircraft, "#SB".
/// Wire: From : To : PI : GEN : EQUIPMENT=... [: AIRLINE=...] [: LIVERY=...] [: CSL=...]
struct PlaneInfoResponse : PduBase
{
    static constexpr QLatin1StringView identifier{"#SB"};

    QString equipment;
    QString airline; ///< written only when not empty
    QString livery;  ///< written only when not empty
    QString csl;     ///< written only when not empty; read from "CSL", else from "m_csl"

    PlaneInfoResponse(QString from, QString to, QString equipment, QString airline, QString livery, QString csl);
    /// Throws PDUFormatException, "Invalid field count for PlaneInfoResponse command.", below 5 fields.
    static PlaneInfoResponse parse(const QStringList &fields);
    QStringList serialize() const;

    bool operator==(const PlaneInfoResponse &) const = default;
};

} // namespace tarvo::fsd::pdu
