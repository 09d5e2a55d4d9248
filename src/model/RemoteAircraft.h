#pragma once

#include "model/AircraftConfiguration.h"
#include "model/AircraftVisualState.h"

#include <QDateTime>
#include <QString>

namespace tarvo::model {

/// One other pilot as the session knows him.
struct RemoteAircraft
{
    enum class State : quint8
    {
        New = 0,
        InSimulator = 1,
        Ignored = 2,
        Pending = 3
    };

    QString callsign;                    ///< upper-case
    QString airline;                     ///< three-letter airline code, or empty
    QString livery;                      ///< as told by the peer, or empty
    QString remoteModelHint;             ///< the peer's own model name, or empty
    QString typeCode;                    ///< ICAO type designator, normalised; empty until known
    AircraftVisualState visualState;     ///< last position
    AircraftConfiguration configuration; ///< last merged configuration
    bool hasConfiguration = false;
    QDateTime lastUpdate;      ///< last position or configuration received
    QDateTime lastStateChange; ///< last change of `state`, type or configuration
    State state = State::New;
    bool fastSeen = false;  ///< at least one fast position has arrived
    double groundSpeed = 0; ///< knots

    bool operator==(const RemoteAircraft &) const = default;
};

} // namespace tarvo::model
