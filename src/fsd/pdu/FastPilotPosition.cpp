#include "fsd/pdu/FastPilotPosition.h"

#include "fsd/pdu/AttitudeWord.h"
#include "fsd/pdu/Fields.h"

namespace tarvo::fsd::pdu {

QLatin1StringView FastPilotPosition::identifierOf(FastPilotPositionType type)
{
    switch (type) {
    case FastPilotPositionType::Slow:
        return QLatin1StringView("#SL");
    case FastPilotPositionType::Stopped:
        return QLatin1StringView("#ST");
    case FastPilotPositionType::Fast:
        break;
    }
    return QLatin1StringView("^");
}

FastPilotPosition FastPilotPosition::parse(const QStringList &fields, FastPilotPositionType type)
{
    const bool stopped = type == FastPilotPositionType::Stopped;
    fields::require(fields, stopped ? 6 : 12, QLatin1StringView("FastPilotPosition"));
    FastPilotPosition position;
    position.From = fields[0];
    position.type = type;
    position.latitude = fields::toDouble(fields[1]);
    position.longitude = fields::toDouble(fields[2]);
    position.trueAltitude = fields::toDouble(fields[3]);
    position.altitudeAboveGround = fields::toDouble(fields[4]);
    const Attitude attitude = unpackAttitude(fields::toUInt32(fields[5]));
    position.pitch = attitude.pitch;
    position.heading = attitude.heading;
    position.bank = attitude.bank;
    position.onGround = attitude.onGround;
    if (!stopped) {
        position.velocity1 = fields::toDouble(fields[6]);
        position.velocity2 = fields::toDouble(fields[7]);
        position.velocity3 = fields::toDouble(fields[8]);
        position.pitchVelocity = fields::toDouble(fields[9]);
        position.headingVelocity = fields::toDouble(fields[10]);
        position.bankVelocity = fields::toDouble(fields[11]);
    }
    const qsizetype noseGear = stopped ? 6 : 12; // the angle moves up in a stopped report
    if (fields.size() > noseGear)
        position.noseGearAngle = fields::toDouble(fields[noseGear]);
    return position;
}

QStringList FastPilotPosition::serialize() const
{
    QStringList list{
        From,
        fields::fixed(latitude, 6),
        fields::fixed(longitude, 6),
        fields::fixed(trueAltitude, 2),
        fields::fixed(altitudeAboveGround, 2),
        QString::number(packAttitude({.pitch = pitch, .heading = heading, .bank = bank, .onGround = onGround}))};
    if (type != FastPilotPositionType::Stopped) {
        for (const double rate : {velocity1, velocity2, velocity3, pitchVelocity, headingVelocity, bankVelocity})
            list.append(fields::fixed(rate, 4));
    }
    list.append(fields::fixed(noseGearAngle, 2));
    return list;
}

} // namespace tarvo::fsd::pdu
