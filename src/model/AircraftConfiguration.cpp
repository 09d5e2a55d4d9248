#include "model/AircraftConfiguration.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarvo::model {

namespace {

using Lights = AircraftConfiguration::Lights;
using Engine = AircraftConfiguration::Engine;
using Engines = AircraftConfiguration::Engines;

/// A light's key and where its value stands, in the order in which they are written.
struct LightField
{
    QLatin1StringView key;
    std::optional<bool> Lights::*value;
};
constexpr LightField lightFields[] = {
    {QLatin1StringView("strobe_on"), &Lights::strobeOn}, {QLatin1StringView("landing_on"), &Lights::landingOn},
    {QLatin1StringView("taxi_on"), &Lights::taxiOn},     {QLatin1StringView("beacon_on"), &Lights::beaconOn},
    {QLatin1StringView("nav_on"), &Lights::navOn},
};

std::optional<bool> readBool(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<int> readInt(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isDouble())
        return std::nullopt;
    const double number = value.toDouble();
    const bool fits = number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
    return fits && std::trunc(number) == number ? std::optional(static_cast<int>(number)) : std::nullopt;
}

QString engineKey(std::size_t index)
{
    return QString::number(index + 1);
}

Lights readLights(const QJsonObject &object)
{
    Lights lights;
    lights.present = true;
    for (const LightField &field : lightFields)
        lights.*field.value = readBool(object, field.key);
    return lights;
}

Engines readEngines(const QJsonObject &object)
{
    Engines engines;
    engines.present = true;
    for (std::size_t i = 0; i < engines.engine.size(); ++i) {
        const QJsonObject engine = object.value(engineKey(i)).toObject();
        engines.engine[i].on = readBool(engine, QLatin1StringView("on"));
        engines.engine[i].isReversing = readBool(engine, QLatin1StringView("is_reversing"));
    }
    return engines;
}

AircraftConfiguration readConfiguration(const QJsonObject &object)
{
    AircraftConfiguration result;
    result.isFullData = readBool(object, QLatin1StringView("is_full_data"));
    if (const QJsonValue lights = object.value(QLatin1StringView("lights")); lights.isObject())
        result.lights = readLights(lights.toObject());
    if (const QJsonValue engines = object.value(QLatin1StringView("engines")); engines.isObject())
        result.engines = readEngines(engines.toObject());
    result.gearDown = readBool(object, QLatin1StringView("gear_down"));
    result.flapsPct = readInt(object, QLatin1StringView("flaps_pct"));
    result.spoilersOut = readBool(object, QLatin1StringView("spoilers_out"));
    result.onGround = readBool(object, QLatin1StringView("on_ground"));
    return result;
}

/// Writes an object by hand: peers expect the keys in their order, which a QJsonObject would sort, and no key or value
/// here needs escaping.
class ObjectWriter
{
public:
    void add(QStringView key, const std::optional<bool> &value)
    {
        if (value)
            addText(key, *value ? QStringLiteral("true") : QStringLiteral("false"));
    }
    void add(QStringView key, const std::optional<int> &value)
    {
        if (value)
            addText(key, QString::number(*value));
    }
    void addText(QStringView key, const QString &text)
    {
        m_members << QLatin1Char('"') + key.toString() + QLatin1StringView("\":") + text;
    }
    QString text() const { return QLatin1Char('{') + m_members.join(QLatin1Char(',')) + QLatin1Char('}'); }

private:
    QStringList m_members;
};

QString written(const Lights &lights)
{
    ObjectWriter writer;
    for (const LightField &field : lightFields)
        writer.add(QString(field.key), lights.*field.value);
    return writer.text();
}

bool hasValue(const Engine &engine)
{
    return engine.on || engine.isReversing;
}

QString written(const Engines &engines)
{
    ObjectWriter writer;
    for (std::size_t i = 0; i < engines.engine.size(); ++i) {
        const Engine &engine = engines.engine[i];
        if (!hasValue(engine))
            continue;
        ObjectWriter member;
        member.add(u"on", engine.on);
        member.add(u"is_reversing", engine.isReversing);
        writer.addText(engineKey(i), member.text());
    }
    return writer.text();
}

QString written(const AircraftConfiguration &configuration)
{
    ObjectWriter writer;
    writer.add(u"is_full_data", configuration.isFullData);
    if (configuration.lights.present && configuration.lights.hasValue())
        writer.addText(u"lights", written(configuration.lights));
    if (configuration.engines.present && configuration.engines.hasValue())
        writer.addText(u"engines", written(configuration.engines));
    writer.add(u"gear_down", configuration.gearDown);
    writer.add(u"flaps_pct", configuration.flapsPct);
    writer.add(u"spoilers_out", configuration.spoilersOut);
    writer.add(u"on_ground", configuration.onGround);
    return writer.text();
}

template <class T>
void takeDifference(std::optional<T> &difference, const std::optional<T> &before, const std::optional<T> &now)
{
    if (before != now)
        difference = now;
}

template <class T>
void takePresent(std::optional<T> &record, const std::optional<T> &message)
{
    if (message)
        record = message;
}

} // namespace

bool AircraftConfiguration::Lights::hasValue() const
{
    return std::any_of(std::begin(lightFields), std::end(lightFields),
                       [this](const LightField &field) { return (this->*field.value).has_value(); });
}

bool AircraftConfiguration::Engines::hasValue() const
{
    return std::any_of(engine.begin(), engine.end(), [](const Engine &one) { return model::hasValue(one); });
}

AircraftConfiguration incrementOf(const AircraftConfiguration &before, const AircraftConfiguration &now)
{
    AircraftConfiguration result;
    result.lights.present = true;
    result.engines.present = true;
    for (const LightField &field : lightFields)
        takeDifference(result.lights.*field.value, before.lights.*field.value, now.lights.*field.value);
    for (std::size_t i = 0; i < result.engines.engine.size(); ++i) {
        Engine &engine = result.engines.engine[i];
        takeDifference(engine.on, before.engines.engine[i].on, now.engines.engine[i].on);
        takeDifference(engine.isReversing, before.engines.engine[i].isReversing, now.engines.engine[i].isReversing);
    }
    takeDifference(result.gearDown, before.gearDown, now.gearDown);
    takeDifference(result.flapsPct, before.flapsPct, now.flapsPct);
    takeDifference(result.spoilersOut, before.spoilersOut, now.spoilersOut);
    takeDifference(result.onGround, before.onGround, now.onGround);
    return result;
}

bool differs(const AircraftConfiguration &a, const AircraftConfiguration &b)
{
    const bool sameLights = std::all_of(std::begin(lightFields), std::end(lightFields), [&](const LightField &field) {
        return a.lights.*field.value == b.lights.*field.value;
    });
    return a.flapsPct != b.flapsPct || a.spoilersOut != b.spoilersOut || a.gearDown != b.gearDown ||
           a.onGround != b.onGround || !sameLights || a.engines.engine != b.engines.engine;
}

void merge(AircraftConfiguration &record, const AircraftConfiguration &message)
{
    takePresent(record.onGround, message.onGround);
    takePresent(record.gearDown, message.gearDown);
    takePresent(record.flapsPct, message.flapsPct);
    takePresent(record.spoilersOut, message.spoilersOut);
    if (message.lights.hasValue())
        record.lights = message.lights;
    if (message.engines.hasValue())
        record.engines = message.engines;
}

AircraftConfigurationMessage AircraftConfigurationMessage::parse(const QString &json)
{
    // The parser limits the nesting depth by itself; anything deeper is an error and gives a null document.
    const QJsonObject object = QJsonDocument::fromJson(json.toUtf8()).object();
    AircraftConfigurationMessage result;
    if (object.value(QLatin1StringView("request")).toString() == QLatin1StringView("full"))
        result.requestFull = true;
    if (const QJsonValue config = object.value(QLatin1StringView("config")); config.isObject())
        result.configuration = readConfiguration(config.toObject());
    return result;
}

QString AircraftConfigurationMessage::compose() const
{
    ObjectWriter writer;
    if (requestFull.value_or(false))
        writer.addText(u"request", QStringLiteral("\"full\""));
    else if (configuration)
        writer.addText(u"config", written(*configuration));
    return writer.text();
}

} // namespace tarvo::model
