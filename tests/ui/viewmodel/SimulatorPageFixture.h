#pragma once

#include "model/RadioStackState.h"
#include "model/RemoteAircraft.h"
#include "model/UserAircraftConfigData.h"
#include "model/UserAircraftData.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

#include <QMetaType>
#include <QString>

#include <functional>

namespace tarvo::test {

/// Everything that one call of setOwnAircraft takes.
struct Own
{
    model::UserAircraftData aircraft;
    model::UserAircraftConfigData config;
    model::RadioStackState radio;
    bool paused = false;
};

using Edit = std::function<void(Own &)>;

inline void feed(ui::SimulatorPageViewModel &model, const Own &own)
{
    model.setOwnAircraft(own.aircraft, own.config, own.radio, own.paused);
}

inline model::RemoteAircraft remote(const char *callsign, double latitude, double longitude)
{
    model::RemoteAircraft aircraft;
    aircraft.callsign = QString::fromLatin1(callsign);
    aircraft.typeCode = u"A320"_qs;
    aircraft.visualState.latitude = latitude;
    aircraft.visualState.longitude = longitude;
    aircraft.visualState.altitudeMslM = 1000;
    aircraft.visualState.heading = 270;
    aircraft.groundSpeed = 210;
    return aircraft;
}

inline Own overShanghai()
{
    Own own;
    own.aircraft.latitude = 31;
    own.aircraft.longitude = 121;
    own.aircraft.altitudeMslM = 500;
    return own;
}

} // namespace tarvo::test

Q_DECLARE_METATYPE(tarvo::test::Edit)
