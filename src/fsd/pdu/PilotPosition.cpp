#include "fsd/pdu/PilotPosition.h"

#include "fsd/pdu/AttitudeWord.h"
#include "fsd/pdu/Fields.h"

namespace tarvo::fsd::pdu {

namespace {

/// "Y" identing, "N" with altitude, "S" standby.
QString transponderMode(const PilotPosition &position)
{
    if (position.identing)
        return QStringLiteral("Y");
    return position.squawkingModeC ? QStringLiteral("N") : QStringLiteral("S");
}

} // namespace

PilotPosition PilotPosition::parse(const QStringList &fields)
{
    fields::require(fields, 10, QLatin1StringView("PilotPosition"));
    PilotPosition position;
    position.From = fields[1]; // the only PDU whose sender is its second field
    position.squawkCode = fields::toInt32(fields[2]);
    position.identing = fields[0] == QLatin1Char('Y');
    position.squawkingModeC = position.identing || fields[0] == QLatin1Char('N');
    position.rating = toNetworkRating(fields[3]);
    position.latitude = fields::toDouble(fields[4]);
    position.longitude = fields::toDouble(fields[5]);
    position.trueAltitude = fields::toInt32(fields[6]);
    position.groundSpeed = fields::toInt32(fields[7]);
    const Attitude attitude = unpackAttitude(fields::toUInt32(fields[8]));
    position.pitch = attitude.pitch;
    position.heading = attitude.heading;
    position.bank = attitude.bank;
    position.onGround = attitude.onGround;
    position.pressureAltitude = fields::wrappingSum(position.trueAltitude, fields::toInt32(fields[9]));
    return position;
}

QStringList PilotPosition::serialize() const
{
    return {transponderMode(*this),
            From,
            QString::number(squawkCode),
            toWire(rating),
            fields::fixed(latitude, 6),
            fields::fixed(longitude, 6),
            QString::number(trueAltitude),
            QString::number(groundSpeed),
            QString::number(packAttitude({.pitch = pitch, .heading = heading, .bank = bank, .onGround = onGround})),
            QString::number(fields::wrappingDifference(pressureAltitude, trueAltitude))};
}

} // namespace tarvo::fsd::pdu
