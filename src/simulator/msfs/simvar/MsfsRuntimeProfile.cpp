#include "simulator/msfs/simvar/MsfsRuntimeProfile.h"

namespace tarvo::simulator::msfs {

QString displayName(MsfsRuntimeProfile profile)
{
    switch (profile) {
    case MsfsRuntimeProfile::Msfs2020:
        return QStringLiteral("MSFS 2020");
    case MsfsRuntimeProfile::Msfs2024:
        return QStringLiteral("MSFS 2024");
    case MsfsRuntimeProfile::Unknown:
        break;
    }
    return QStringLiteral("Unknown");
}

} // namespace tarvo::simulator::msfs
