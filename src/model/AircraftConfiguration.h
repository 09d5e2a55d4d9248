#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <optional>

namespace tarvo::model {

/// Lights, engines and surfaces of an aircraft as pilots tell them to each other. Every value is optional: a message
/// carries only what it knows or what changed.
struct AircraftConfiguration
{
    struct Lights
    {
        std::optional<bool> strobeOn;  ///< "strobe_on"
        std::optional<bool> landingOn; ///< "landing_on"
        std::optional<bool> taxiOn;    ///< "taxi_on"
        std::optional<bool> beaconOn;  ///< "beacon_on"
        std::optional<bool> navOn;     ///< "nav_on"
        bool present = false;          ///< the block itself was there, perhaps with no value in it

        bool hasValue() const;
        bool operator==(const Lights &) const = default;
    };
    struct Engine
    {
        std::optional<bool> on;          ///< "on"
        std::optional<bool> isReversing; ///< "is_reversing"

        bool operator==(const Engine &) const = default;
    };
    struct Engines
    {
        std::array<Engine, 4> engine; ///< keys "1" to "4"
        bool present = false;         ///< the block itself was there, perhaps with no value in it

        bool hasValue() const;
        bool operator==(const Engines &) const = default;
    };

    std::optional<bool> isFullData; ///< "is_full_data"
    Lights lights;
    Engines engines;
    std::optional<bool> gearDown;    ///< "gear_down"
    std::optional<int> flapsPct;     ///< "flaps_pct"
    std::optional<bool> spoilersOut; ///< "spoilers_out"
    std::optional<bool> onGround;    ///< "on_ground"

    bool operator==(const AircraftConfiguration &) const = default;
};

/// What differs: both blocks marked present, every field whose presence or value is not the same taken from `now`,
/// the rest absent. `isFullData` stays absent.
AircraftConfiguration incrementOf(const AircraftConfiguration &before, const AircraftConfiguration &now);

/// True when a field of flaps, spoilers, gear, ground, lights or engines has another presence or another value.
bool differs(const AircraftConfiguration &a, const AircraftConfiguration &b);

/// Takes over what `message` carries. If it carries any light, all five lights are copied, absent ones included; if it
/// carries any engine value, the whole block is. `isFullData` is left alone.
void merge(AircraftConfiguration &record, const AircraftConfiguration &message);

/// One text of the configuration exchange, either a request or a configuration.
struct AircraftConfigurationMessage
{
    std::optional<bool> requestFull;
    std::optional<AircraftConfiguration> configuration;

    /// Reads JSON text. Anything but an object gives an empty message; a key of the wrong type is left absent.
    static AircraftConfigurationMessage parse(const QString &json);
    /// Compact JSON in the order of the fields: a request, else a configuration, else "{}".
    QString compose() const;

    bool operator==(const AircraftConfigurationMessage &) const = default;
};

} // namespace tarvo::model
