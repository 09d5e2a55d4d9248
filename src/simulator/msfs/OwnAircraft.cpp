#include "simulator/msfs/OwnAircraft.h"

#include "common/Units.h"
#include "simulator/msfs/RadioFrequency.h"

#include <algorithm>

namespace tarvo::simulator::msfs {

using model::RadioStackState;
using model::UserAircraftConfigData;
using model::UserAircraftData;

namespace {

constexpr quint32 fullVolume = 100;
constexpr int lowestModeC = 4; ///< of the transponder's states: off, standby, test, on, altitude, ground

template <class Record, class Value>
struct Field
{
    QString key;
    Value Record::*member;
};

using D = UserAircraftData;
const Field<D, double> motion[] = {
    {QStringLiteral("latitude"), &D::latitude},
    {QStringLiteral("longitude"), &D::longitude},
    {QStringLiteral("altitudeMslM"), &D::altitudeMslM},
    {QStringLiteral("altitudeAglM"), &D::altitudeAglM},
    {QStringLiteral("altitudePressure"), &D::altitudePressure},
    {QStringLiteral("qnh"), &D::qnh},
    {QStringLiteral("groundSpeed"), &D::groundSpeed},
    {QStringLiteral("pitch"), &D::pitch},
    {QStringLiteral("heading"), &D::heading},
    {QStringLiteral("bank"), &D::bank},
    {QStringLiteral("latitudeVelocity"), &D::latitudeVelocity},
    {QStringLiteral("longitudeVelocity"), &D::longitudeVelocity},
    {QStringLiteral("altitudeVelocity"), &D::altitudeVelocity},
    {QStringLiteral("pitchVelocity"), &D::pitchVelocity},
    {QStringLiteral("headingVelocity"), &D::headingVelocity},
    {QStringLiteral("bankVelocity"), &D::bankVelocity},
    {QStringLiteral("noseWheelAngle"), &D::noseWheelAngle},
};

using C = UserAircraftConfigData;
const Field<C, bool> switches[] = {
    {QStringLiteral("engine1Running"), &C::engine1Running},
    {QStringLiteral("engine2Running"), &C::engine2Running},
    {QStringLiteral("engine3Running"), &C::engine3Running},
    {QStringLiteral("engine4Running"), &C::engine4Running},
    {QStringLiteral("engine1Reversing"), &C::engine1Reversing},
    {QStringLiteral("engine2Reversing"), &C::engine2Reversing},
    {QStringLiteral("engine3Reversing"), &C::engine3Reversing},
    {QStringLiteral("engine4Reversing"), &C::engine4Reversing},
    {QStringLiteral("beaconOn"), &C::beaconOn},
    {QStringLiteral("landingLightsOn"), &C::landingLightsOn},
    {QStringLiteral("taxiLightsOn"), &C::taxiLightsOn},
    {QStringLiteral("navLightsOn"), &C::navLightsOn},
    {QStringLiteral("strobesOn"), &C::strobesOn},
    {QStringLiteral("onGround"), &C::onGround},
};

using R = RadioStackState;
const Field<R, bool> radioSwitches[] = {
    {QStringLiteral("avionicsPowerOn"), &R::avionicsPowerOn},
    {QStringLiteral("com1TransmitEnabled"), &R::com1TransmitEnabled},
    {QStringLiteral("com2TransmitEnabled"), &R::com2TransmitEnabled},
    {QStringLiteral("com1ReceiveEnabled"), &R::com1ReceiveEnabled},
};
const Field<R, quint32> frequencies[] = {
    {QStringLiteral("com1Frequency"), &R::com1Frequency},
    {QStringLiteral("com2Frequency"), &R::com2Frequency},
};

// Keys are QString from the start: a sample comes many times a second, and QMap takes no other text.

/// A sample, read with a default for what it lacks.
class Reader
{
public:
    explicit Reader(const QVariantMap &sample) : m_sample(sample) {}

    bool has(const QString &key) const { return m_sample.contains(key); }
    double real(const QString &key, double otherwise) const { return value(key, otherwise).toDouble(); }
    int integer(const QString &key, int otherwise) const { return value(key, otherwise).toInt(); }
    bool flag(const QString &key, bool otherwise) const { return value(key, otherwise).toBool(); }
    QString text(const QString &key) const { return value(key, {}).toString(); }

    /// Reads every field of a table that the sample holds.
    template <class Record, class Value, std::size_t Count>
    void into(Record &record, const Field<Record, Value> (&fields)[Count]) const
    {
        for (const auto &field : fields) {
            if (const auto found = m_sample.constFind(field.key); found != m_sample.cend())
                record.*field.member = found->template value<Value>();
        }
    }

private:
    QVariant value(const QString &key, const QVariant &otherwise) const { return m_sample.value(key, otherwise); }

    const QVariantMap &m_sample;
};

/// Aircraft differ in which of the many sources moves: the largest counts.
double speedbrakeRatio(const Reader &sample, double last)
{
    const double handle = sample.real(QStringLiteral("speedbrakeRatio"), last);
    const double left = sample.real(QStringLiteral("speedbrakeLeftPosition"), handle);
    const double right = sample.real(QStringLiteral("speedbrakeRightPosition"), handle);
    const double largest =
        std::max({handle, left, right, sample.real(QStringLiteral("speedbrakeHandlePositionRaw"), handle),
                  sample.real(QStringLiteral("speedbrakeLeftPositionRaw"), left),
                  sample.real(QStringLiteral("speedbrakeRightPositionRaw"), right)});
    const double airbus = sample.real(QStringLiteral("airbusSpeedbrakeHandlePosition"), largest);
    const double ini = sample.real(QStringLiteral("iniSpeedbrakeHandle"), airbus);
    return std::clamp(std::max({largest, airbus, ini}), 0.0, 1.0);
}

void readConfig(const Reader &sample, UserAircraftConfigData &config)
{
    // "GEAR POSITION" in percent: above half of one percent counts as down, on purpose.
    config.gearDown = sample.real(QStringLiteral("gearDown"), config.gearDown ? 100 : 0) > 0.5;
    if (sample.has(QStringLiteral("flapsRatio"))) // the last ratio, times 100 and back, might differ in its last digit
        config.flapsRatio = sample.real(QStringLiteral("flapsRatio"), 0) / 100;
    config.speedbrakeRatio = speedbrakeRatio(sample, config.speedbrakeRatio);
    config.speedbrakeArmed = sample.flag(QStringLiteral("speedbrakeArmed"), config.speedbrakeArmed) ||
                             sample.flag(QStringLiteral("airbusSpeedbrakeArmed"), false) ||
                             sample.flag(QStringLiteral("iniSpeedbrakeArmed"), false);
    config.engineCount = sample.integer(QStringLiteral("engineCount"), config.engineCount);
    sample.into(config, switches);
}

void readRadio(const Reader &sample, RadioStackState &radio)
{
    sample.into(radio, radioSwitches);
    for (const auto &field : frequencies)
        radio.*field.member = kilohertzOf(sample.real(field.key, radio.*field.member / 1000.0));
    radio.com1Volume = fullVolume;
    radio.com2Volume = fullVolume;
    radio.transponderCode =
        static_cast<quint16>(sample.integer(QStringLiteral("transponderCode"), radio.transponderCode));
    radio.squawkingModeC =
        sample.integer(QStringLiteral("squawkingModeC"), radio.squawkingModeC ? lowestModeC : 1) >= lowestModeC;
}

} // namespace

OwnAircraft afterSample(const OwnAircraft &last, const QVariantMap &sample)
{
    const Reader reader(sample);
    OwnAircraft now = last;
    reader.into(now.data, motion);
    readConfig(reader, now.config);
    readRadio(reader, now.radio);
    if (const QString title = reader.text(QStringLiteral("aircraftTitle")).trimmed(); !title.isEmpty())
        now.title = title;
    // Not the last value, on purpose: a sample of another group reads as not paused.
    now.paused = reader.flag(QStringLiteral("simPaused"), false);
    return now;
}

double speedbrakeOf(double value)
{
    return std::clamp(value > 1 ? value / 100 : value, 0.0, 1.0);
}

double pressureAltitudeFeet(const model::UserAircraftData &own)
{
    return own.altitudePressure > 0 ? own.altitudePressure : trueAltitudeFeet(own);
}

double trueAltitudeFeet(const model::UserAircraftData &own)
{
    return own.altitudeMslM * common::feetPerMetre;
}

} // namespace tarvo::simulator::msfs
