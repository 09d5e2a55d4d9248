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
    const char *key;
    Value Record::*member;
};

using D = UserAircraftData;
constexpr Field<D, double> motion[] = {
    {"latitude", &D::latitude},
    {"longitude", &D::longitude},
    {"altitudeMslM", &D::altitudeMslM},
    {"altitudeAglM", &D::altitudeAglM},
    {"altitudePressure", &D::altitudePressure},
    {"qnh", &D::qnh},
    {"groundSpeed", &D::groundSpeed},
    {"pitch", &D::pitch},
    {"heading", &D::heading},
    {"bank", &D::bank},
    {"latitudeVelocity", &D::latitudeVelocity},
    {"longitudeVelocity", &D::longitudeVelocity},
    {"altitudeVelocity", &D::altitudeVelocity},
    {"pitchVelocity", &D::pitchVelocity},
    {"headingVelocity", &D::headingVelocity},
    {"bankVelocity", &D::bankVelocity},
    {"noseWheelAngle", &D::noseWheelAngle},
};

using C = UserAircraftConfigData;
constexpr Field<C, bool> switches[] = {
    {"engine1Running", &C::engine1Running},
    {"engine2Running", &C::engine2Running},
    {"engine3Running", &C::engine3Running},
    {"engine4Running", &C::engine4Running},
    {"engine1Reversing", &C::engine1Reversing},
    {"engine2Reversing", &C::engine2Reversing},
    {"engine3Reversing", &C::engine3Reversing},
    {"engine4Reversing", &C::engine4Reversing},
    {"beaconOn", &C::beaconOn},
    {"landingLightsOn", &C::landingLightsOn},
    {"taxiLightsOn", &C::taxiLightsOn},
    {"navLightsOn", &C::navLightsOn},
    {"strobesOn", &C::strobesOn},
    {"onGround", &C::onGround},
};

using R = RadioStackState;
constexpr Field<R, bool> radioSwitches[] = {
    {"avionicsPowerOn", &R::avionicsPowerOn},
    {"com1TransmitEnabled", &R::com1TransmitEnabled},
    {"com2TransmitEnabled", &R::com2TransmitEnabled},
    {"com1ReceiveEnabled", &R::com1ReceiveEnabled},
};
constexpr Field<R, quint32> frequencies[] = {
    {"com1Frequency", &R::com1Frequency},
    {"com2Frequency", &R::com2Frequency},
};

/// A sample, read with a default for what it lacks.
class Reader
{
public:
    explicit Reader(const QVariantMap &sample) : m_sample(sample) {}

    bool has(const char *key) const { return m_sample.contains(QLatin1StringView(key)); }
    double real(const char *key, double otherwise) const { return value(key, otherwise).toDouble(); }
    int integer(const char *key, int otherwise) const { return value(key, otherwise).toInt(); }
    bool flag(const char *key, bool otherwise) const { return value(key, otherwise).toBool(); }
    QString text(const char *key) const { return value(key, {}).toString(); }

    /// Reads every field of a table that the sample holds.
    template <class Record, class Value, std::size_t Count>
    void into(Record &record, const Field<Record, Value> (&fields)[Count]) const
    {
        for (const auto &field : fields) {
            if (const auto found = m_sample.constFind(QLatin1StringView(field.key)); found != m_sample.cend())
                record.*field.member = found->template value<Value>();
        }
    }

private:
    QVariant value(const char *key, const QVariant &otherwise) const
    {
        return m_sample.value(QLatin1StringView(key), otherwise);
    }

    const QVariantMap &m_sample;
};

/// Aircraft differ in which of the many sources moves: the largest counts.
double speedbrakeRatio(const Reader &sample, double last)
{
    const double handle = sample.real("speedbrakeRatio", last);
    const double left = sample.real("speedbrakeLeftPosition", handle);
    const double right = sample.real("speedbrakeRightPosition", handle);
    const double largest =
        std::max({handle, left, right, sample.real("speedbrakeHandlePositionRaw", handle),
                  sample.real("speedbrakeLeftPositionRaw", left), sample.real("speedbrakeRightPositionRaw", right)});
    const double airbus = sample.real("airbusSpeedbrakeHandlePosition", largest);
    const double ini = sample.real("iniSpeedbrakeHandle", airbus);
    return std::clamp(std::max({largest, airbus, ini}), 0.0, 1.0);
}

void readConfig(const Reader &sample, UserAircraftConfigData &config)
{
    // "GEAR POSITION" in percent: above half of one percent counts as down, on purpose.
    config.gearDown = sample.real("gearDown", config.gearDown ? 100 : 0) > 0.5;
    if (sample.has("flapsRatio")) // the last ratio, times 100 and back, might differ in its last digit
        config.flapsRatio = sample.real("flapsRatio", 0) / 100;
    config.speedbrakeRatio = speedbrakeRatio(sample, config.speedbrakeRatio);
    config.speedbrakeArmed = sample.flag("speedbrakeArmed", config.speedbrakeArmed) ||
                             sample.flag("airbusSpeedbrakeArmed", false) || sample.flag("iniSpeedbrakeArmed", false);
    config.engineCount = sample.integer("engineCount", config.engineCount);
    sample.into(config, switches);
}

void readRadio(const Reader &sample, RadioStackState &radio)
{
    sample.into(radio, radioSwitches);
    for (const auto &field : frequencies)
        radio.*field.member = kilohertzOf(sample.real(field.key, radio.*field.member / 1000.0));
    radio.com1Volume = fullVolume;
    radio.com2Volume = fullVolume;
    radio.transponderCode = static_cast<quint16>(sample.integer("transponderCode", radio.transponderCode));
    radio.squawkingModeC = sample.integer("squawkingModeC", radio.squawkingModeC ? lowestModeC : 1) >= lowestModeC;
}

} // namespace

OwnAircraft afterSample(const OwnAircraft &last, const QVariantMap &sample)
{
    const Reader reader(sample);
    OwnAircraft now = last;
    reader.into(now.data, motion);
    readConfig(reader, now.config);
    readRadio(reader, now.radio);
    if (const QString title = reader.text("aircraftTitle").trimmed(); !title.isEmpty())
        now.title = title;
    // Not the last value, on purpose: a sample of another group reads as not paused.
    now.paused = reader.flag("simPaused", false);
    return now;
}

std::optional<double> speedbrakeOf(const QString &eventName, double value)
{
    const QString name = eventName.toLower();
    for (const char *word : {"spoiler", "speedbrake", "speed_brake"}) {
        if (name.contains(QLatin1StringView(word)))
            return std::clamp(value > 1 ? value / 100 : value, 0.0, 1.0);
    }
    return {};
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
