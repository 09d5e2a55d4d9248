#pragma once

#include <QString>

namespace tarvo::model {

/// Which simulator the pilot has picked.
enum class SimulatorMode : quint8
{
    None,
    Msfs,
    XPlane
};

/// "NONE", "MSFS" or "XPLANE".
QString modeText(SimulatorMode mode);

/// The mode with this text; any other text is None.
SimulatorMode modeFromText(const QString &text);

} // namespace tarvo::model
