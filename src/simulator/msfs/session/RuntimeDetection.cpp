#include "simulator/msfs/session/RuntimeDetection.h"

namespace tarvo::simulator::msfs {

MsfsRuntimeProfile profileOfLibrary(const QString &name)
{
    const bool is2024 = name.compare(QLatin1String("SimConnect2024.dll"), Qt::CaseInsensitive) == 0;
    return is2024 ? MsfsRuntimeProfile::Msfs2024 : MsfsRuntimeProfile::Msfs2020;
}

MsfsRuntimeProfile profileOfApplication(const QString &application, quint32 major)
{
    const auto has = [&application](const char *word) {
        return application.contains(QLatin1String(word), Qt::CaseInsensitive);
    };
    if (has("2024") || has("Limitless") || major >= 2)
        return MsfsRuntimeProfile::Msfs2024;
    if (has("2020") || has("Flight Simulator") || major == 1)
        return MsfsRuntimeProfile::Msfs2020;
    return MsfsRuntimeProfile::Unknown;
}

} // namespace tarvo::simulator::msfs
