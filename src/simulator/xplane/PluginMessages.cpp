#include "simulator/xplane/PluginMessages.h"

#include "model/Controller.h"
#include "model/RemoteAircraft.h"
#include "model/VelocityVector.h"

#include <QVarLengthArray>
#include <QtEndian>

#include <msgpack.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <optional>

namespace tarvo::simulator::xplane::message {

namespace {

/// What a message is packed in; a longer one goes to the heap.
constexpr qsizetype initialBufferSize = 8192;

/// A float64 whatever its value: msgpack's own packing turns whole numbers into integers.
struct Float64
{
    double value;
};

/// A float32 whatever its value.
struct Float32
{
    float value;
};

/// True, or nil in the place of false.
struct TrueOrNil
{
    bool value;
};

/// Packs one message. The arguments follow in the order of the calls; `argumentCount` of them are announced.
class MessageWriter
{
public:
    MessageWriter(const char *name, quint32 argumentCount) : m_packer(*this)
    {
        m_packer.pack_array(2);
        m_packer.pack(name);
        m_packer.pack_array(argumentCount);
    }

    void array(quint32 count) { m_packer.pack_array(count); }
    void put(bool value) { m_packer.pack(value); }
    void put(int value) { m_packer.pack(value); }
    void put(quint32 value) { m_packer.pack(value); }
    void put(double value) { put(Float64{value}); }

    void put(const QString &text)
    {
        const QByteArray utf8 = text.toUtf8();
        m_packer.pack_str(static_cast<quint32>(utf8.size()));
        m_packer.pack_str_body(utf8.constData(), static_cast<quint32>(utf8.size()));
    }

    void put(Float64 number) { putTagged('\xcb', qToBigEndian(std::bit_cast<quint64>(number.value))); }
    void put(Float32 number) { putTagged('\xca', qToBigEndian(std::bit_cast<quint32>(number.value))); }

    void put(TrueOrNil flag)
    {
        if (flag.value)
            m_packer.pack_true();
        else
            m_packer.pack_nil();
    }

    template <class T>
    void put(const std::optional<T> &value)
    {
        if (value)
            put(*value);
        else
            m_packer.pack_nil();
    }

    /// What the packer writes to.
    void write(const char *data, size_t size) { m_bytes.append(data, static_cast<qsizetype>(size)); }

    QByteArray bytes() const { return {m_bytes.constData(), m_bytes.size()}; }

private:
    template <class Bits>
    void putTagged(char tag, Bits bigEndian)
    {
        m_bytes.append(tag);
        write(reinterpret_cast<const char *>(&bigEndian), sizeof bigEndian);
    }

    QVarLengthArray<char, initialBufferSize> m_bytes;
    msgpack::packer<MessageWriter> m_packer;
};

template <class... Arguments>
QByteArray packed(const char *name, const Arguments &...arguments)
{
    MessageWriter writer(name, sizeof...(arguments));
    (writer.put(arguments), ...);
    return writer.bytes();
}

using Engine = model::AircraftConfiguration::Engine;

/// True when any engine has this value set; absent when the block is, or holds no value at all.
std::optional<bool> anyEngine(const model::AircraftConfiguration::Engines &engines, std::optional<bool> Engine::*value)
{
    const auto known = [](const Engine &engine) { return engine.on || engine.isReversing; };
    if (!engines.present || std::ranges::none_of(engines.engine, known))
        return std::nullopt;
    return std::ranges::any_of(engines.engine, [value](const Engine &engine) { return engine.*value == true; });
}

std::optional<Float32> flapsRatio(const std::optional<int> &percent)
{
    if (!percent)
        return std::nullopt;
    // Two decimals by way of the ratio, as the plugin's side has it; for whole percents the detour changes nothing.
    return Float32{static_cast<float>(std::round(*percent / 100.0 * 100.0) / 100.0)};
}

bool isListed(const model::Controller &controller)
{
    return controller.valid && controller.frequency != model::Controller::noFrequency;
}

} // namespace

QByteArray version()
{
    return packed("VER");
}

QByteArray csl(const QStringList &paths)
{
    MessageWriter writer("CSL", 2);
    writer.array(static_cast<quint32>(paths.size()));
    for (const QString &path : paths)
        writer.put(path);
    writer.put(false);
    return writer.bytes();
}

QByteArray add(const model::RemoteAircraft &aircraft)
{
    const model::AircraftVisualState &at = aircraft.visualState;
    return packed("ADD", aircraft.callsign, aircraft.airline, aircraft.typeCode, at.latitude, at.longitude,
                  at.altitudeMslM, at.heading, at.bank, at.pitch);
}

QByteArray configuration(const model::RemoteAircraft &aircraft)
{
    const model::AircraftConfiguration &config = aircraft.configuration;
    return packed("ACCONF", aircraft.callsign, TrueOrNil{config.isFullData.value_or(false)},
                  anyEngine(config.engines, &Engine::on), anyEngine(config.engines, &Engine::isReversing),
                  config.onGround, flapsRatio(config.flapsPct), config.gearDown, config.lights.beaconOn,
                  config.lights.landingOn, config.lights.navOn, config.lights.strobeOn, config.lights.taxiOn);
}

QByteArray remove(const QString &callsign, const QString &reason)
{
    return packed("DEL", callsign, reason);
}

QByteArray removeAll()
{
    return packed("DELALL");
}

QByteArray controllers(const QList<model::Controller> &controllers)
{
    MessageWriter writer("ATC", 1);
    writer.array(static_cast<quint32>(std::ranges::count_if(controllers, isListed)));
    for (const model::Controller &controller : controllers) {
        if (!isListed(controller))
            continue;
        writer.array(4);
        writer.put(controller.callsign);
        writer.put(controller.realName);
        writer.put(QString::number(controller.frequency / 1000.0, 'f', 3));
        writer.put(controller.frequency);
    }
    return writer.bytes();
}

QByteArray position(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state)
{
    return packed("POS", aircraft.callsign, state.latitude, state.longitude, state.altitudeMslM, state.altitudeAglM,
                  state.heading, state.bank, state.pitch, aircraft.groundSpeed);
}

QByteArray fastPosition(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state,
                        const model::VelocityVector &velocity, const model::VelocityVector &rotation)
{
    return packed("FSTPOS", aircraft.callsign, state.latitude, state.longitude, state.altitudeMslM, state.altitudeAglM,
                  state.heading, state.bank, state.pitch, velocity.x, velocity.y, velocity.z, rotation.x, rotation.y,
                  rotation.z, state.noseWheelAngle, aircraft.groundSpeed);
}

QByteArray heartbeat(const QString &callsign)
{
    return packed("HB", callsign);
}

QByteArray radioSent(const QString &message)
{
    return packed("RDIOSENT", message);
}

QByteArray radioReceived(const QString &from, const QString &message, bool direct)
{
    return packed("RDIORCVD", from, message, direct);
}

QByteArray notification(const QString &message, int colour)
{
    return packed("NOTIF", message, colour);
}

QByteArray privateSent(const QString &to, const QString &message)
{
    return packed("PRIVSENT", to, message);
}

QByteArray privateReceived(const QString &from, const QString &message)
{
    return packed("PRIVRCVD", from, message);
}

QByteArray networkConnected(const QString &callsign, const QString &selcal, bool observer)
{
    return packed("CONN", callsign, selcal, observer);
}

QByteArray networkDisconnected()
{
    return packed("DISCON");
}

QByteArray stationCallsign(int radio, const QString &callsign)
{
    return packed("STATION_CALLSIGN", radio, callsign);
}

} // namespace tarvo::simulator::xplane::message
