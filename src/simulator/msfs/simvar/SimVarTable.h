#pragma once

#include "simulator/msfs/simvar/MsfsRuntimeProfile.h"
#include "simulator/msfs/simvar/SimKey.h"
#include "simulator/msfs/simvar/SimVarConversion.h"
#include "simulator/msfs/simvar/UpdateGroup.h"

#include <QList>
#include <QString>

#include <optional>
#include <span>

namespace tarvo::simulator::msfs {

/// The type of a simulation variable, here and on the wire.
enum class SimVarType : quint8
{
    Float = 0, ///< 8 bytes of double; read as a double
    Int = 1,   ///< 4 bytes; read as an int
    Bool = 2,  ///< 4 bytes; read as a bool, any but 0 is true
    String = 3 ///< 256 bytes of UTF-8 up to the first zero; read as a string
};

/// One row of the table: what is read and written under a key.
struct SimVarDefinition
{
    SimKey key;
    UpdateGroup group;
    SimVarType type;
    const char *dataKey;      ///< in the map of a sample
    const char *variable2020; ///< the simulator's name
    const char *unit2020;     ///< the simulator's name of the unit
    const char *variable2024; ///< empty where it is that of 2020
    const char *unit2024;     ///< likewise
    SimVarConversion conversion;
    bool active; ///< false: never read, but can be written to other aircraft
};

/// A row as it is for one of the two simulators.
struct SimVarBinding
{
    SimKey key = {};
    const char *variable = "";
    const char *unit = "";
    SimVarType type = SimVarType::Float;
    UpdateGroup group = UpdateGroup::Position;
    QString dataKey;
    SimVarConversion conversion = SimVarConversion::None;
};

/// A row of the events that can be sent.
struct CommandDefinition
{
    CommandKey key;
    const char *event2020; ///< the simulator's name
    const char *event2024; ///< empty where it is that of 2020
};

/// All rows, in the order of their keys.
std::span<const SimVarDefinition> simVarDefinitions();
std::span<const CommandDefinition> commandDefinitions();

/// Name and unit of 2024 stand for that simulator where they are given, each for itself; those of 2020 for any other.
SimVarBinding simVarBinding(const SimVarDefinition &definition, MsfsRuntimeProfile profile);
const char *commandEvent(const CommandDefinition &definition, MsfsRuntimeProfile profile);

/// The rows that are read, in order: all, or those of one group.
QList<SimVarBinding> simVarBindings(MsfsRuntimeProfile profile);
QList<SimVarBinding> simVarBindings(UpdateGroup group, MsfsRuntimeProfile profile);
/// The row of a key, also of one that is never read; nothing for an unknown key.
std::optional<SimVarBinding> simVarBinding(SimKey key, MsfsRuntimeProfile profile);
bool hasSimVar(SimKey key, MsfsRuntimeProfile profile);
/// Such as "XPNDR_IDENT_ON"; empty for an unknown key.
const char *commandEvent(CommandKey key, MsfsRuntimeProfile profile);

/// One line a row, "key=0 group=0 type=0", for a look at the table.
QString simVarReport();

} // namespace tarvo::simulator::msfs
