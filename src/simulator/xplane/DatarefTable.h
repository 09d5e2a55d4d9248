#pragma once

#include "model/RadioStackState.h"
#include "model/UserAircraftConfigData.h"
#include "model/UserAircraftData.h"

#include <QtGlobal>

#include <span>

namespace tarvo::simulator::xplane {

/// What X-Plane has told about the own aircraft and itself so far.
struct DatarefSample
{
    model::UserAircraftData user;
    model::UserAircraftConfigData config;
    model::RadioStackState radio;
    bool paused = false;
    int version = 0; ///< X-Plane's internal version number, such as 120105; 0 until known
};

/// What a single value means beyond its place in the sample.
enum class DatarefEvent
{
    None,
    ReplayMode,     ///< a replay is running; raised by every such record
    PausedChanged,  ///< DatarefSample::paused has a new value
    VersionChanged, ///< DatarefSample::version has a new value
};

/// One subscribed dataref. Its place in the table is the id under which X-Plane reports it.
struct Dataref
{
    const char *name; ///< X-Plane's name, below 400 bytes
    qint32 rateHz;    ///< reports wanted per second
    DatarefEvent (*apply)(DatarefSample &sample, float value);
};

/// All subscribed datarefs, in the order of their ids.
std::span<const Dataref> datarefs();

/// Folds one reported value into the sample. An id outside the table is ignored. Any value is safe, NaN and infinities
/// included: whole numbers are truncated and kept inside their type, NaN counts as 0 there.
DatarefEvent applyDataref(DatarefSample &sample, quint32 id, float value);

} // namespace tarvo::simulator::xplane
