#include "simulator/Simulator.h"

namespace tarvo::simulator {

QString simulatorTypeName(SimulatorType type)
{
    switch (type) {
    case SimulatorType::Msfs2020:
        return QStringLiteral("MFS2020");
    case SimulatorType::Msfs2024:
        return QStringLiteral("MFS2024");
    case SimulatorType::XPlane10:
        return QStringLiteral("XPlane10");
    case SimulatorType::XPlane11:
        return QStringLiteral("XPlane11");
    case SimulatorType::XPlane12:
        return QStringLiteral("XPlane12");
    case SimulatorType::Unknown:
        break;
    }
    return QStringLiteral("Unknown");
}

} // namespace tarvo::simulator
