#pragma once

#include <QMetaType>
#include <QString>

namespace tarvo::simulator::msfs {

/// Which of the two simulators runs.
enum class MsfsRuntimeProfile : quint8
{
    Unknown = 0,
    Msfs2020 = 1,
    Msfs2024 = 2
};

/// "Unknown", "MSFS 2020" or "MSFS 2024".
QString displayName(MsfsRuntimeProfile profile);

} // namespace tarvo::simulator::msfs

Q_DECLARE_METATYPE(tarvo::simulator::msfs::MsfsRuntimeProfile)
