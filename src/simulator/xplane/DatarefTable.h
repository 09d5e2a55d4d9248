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
    float most = 1e6F; ///< the largest value, of either sign, that is believed
};

/// All subscribed datarefs, in the order of their ids.
std::span<const Dataref> datarefs();

/// Folds one reported value into the sample. Ignored are an id outside the table, and a value that no simulator can
/// mean: NaN, infinities, and what is beyond the row's `most`. The field stays as it was then.
DatarefEvent applyDataref(DatarefSample &sample, quint32 id, float value);

} // namespace tarvo::simulator::xplane
