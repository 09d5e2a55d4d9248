#pragma once

#include "model/AircraftConfiguration.h"
#include "model/AircraftVisualState.h"

#include <QDateTime>
#include <QString>

namespace tarvo::model {

/// One other pilot as the session knows him. NetworkManager and AircraftManager keep a record each, and fill it by
/// rules of their own.
struct RemoteAircraft
{
    enum class State : quint8
    {
        New = 0,         ///< the simulator has not been told of it
        InSimulator = 1, ///< added; for AircraftManager once the simulator has confirmed it
        Ignored = 2,     ///< AircraftManager never tells the simulator of it
        Pending = 3      ///< AircraftManager: added, not confirmed yet; NetworkManager: to be added to a new simulator
    };

    QString callsign;                    ///< upper-case
    QString airline;                     ///< three-letter airline code, or empty
    QString livery;                      ///< as told by the peer, upper-case, or empty
    QString remoteModelHint;             ///< the peer's own model name, or empty
    QString typeCode;                    ///< ICAO type designator, normalised; empty until known
    AircraftVisualState visualState;     ///< last position
    AircraftConfiguration configuration; ///< merged by AircraftManager; in NetworkManager the last message's alone
    bool hasConfiguration = false;
    QDateTime lastUpdate;      ///< last position or configuration; until there is one, when the record was made
    QDateTime lastStateChange; ///< AircraftManager: last addition; NetworkManager: last word on type or configuration
    State state = State::New;
    bool fastSeen = false;  ///< at least one fast position has arrived
    double groundSpeed = 0; ///< knots

    bool operator==(const RemoteAircraft &) const = default;
};

} // namespace tarvo::model
