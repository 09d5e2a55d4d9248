#pragma once

#include "simulator/msfs/simvar/MsfsRuntimeProfile.h"

#include <QString>

namespace tarvo::simulator::msfs {

/// What the [GENERAL] section of an aircraft.cfg says of the type; empty where it says nothing.
struct MsfsAircraftMetadata
{
    QString icaoTypeDesignator; ///< such as "A320"
    QString icaoManufacturer;
    QString icaoModel;
    QString icaoEngineType;
    QString icaoWakeCategory;
    QString category;
    QString icaoEngineCount;

    bool operator==(const MsfsAircraftMetadata &) const = default;
};

/// One variant of one model that is installed here. White space in the texts is one blank each.
struct MsfsAircraftEntry
{
    MsfsRuntimeProfile runtime = MsfsRuntimeProfile::Unknown;
    QString title;      ///< the container title that the simulator makes an object of
    QString configPath; ///< absolute, of the aircraft.cfg
    QString rootLabel;
    QString package; ///< first part of the path below the root
    QString uiManufacturer;
    QString uiType;
    QString uiVariation;
    QString airline;
    MsfsAircraftMetadata metadata;
    bool isAirTraffic = false;
    bool isUserSelectable = false;
    bool isCommunity = false;

    bool operator==(const MsfsAircraftEntry &) const = default;
};

} // namespace tarvo::simulator::msfs
