#pragma once

#include "model/RadioStackState.h"
#include "model/UserAircraftConfigData.h"
#include "model/UserAircraftData.h"

#include <QString>
#include <QVariantMap>

namespace tarvo::simulator::msfs {

/// What is known of the pilot's own aircraft.
struct OwnAircraft
{
    model::UserAircraftData data;
    model::UserAircraftConfigData config;
    model::RadioStackState radio;
    QString title; ///< the newest container title that was not empty
    bool paused = false;

    bool operator==(const OwnAircraft &) const = default;
};

/// What is known after a sample: the keys of one group of the table, or a part of them. What it lacks stays as it was,
/// except for the pause.
OwnAircraft afterSample(const OwnAircraft &last, const QVariantMap &sample);

/// The speed brake's position, 0 to 1, that an input event tells.
double speedbrakeOf(double value);

/// Feet, for the pressure field of position reports.
double pressureAltitudeFeet(const model::UserAircraftData &own);
/// Feet, for the true altitude field of position reports.
double trueAltitudeFeet(const model::UserAircraftData &own);

} // namespace tarvo::simulator::msfs
