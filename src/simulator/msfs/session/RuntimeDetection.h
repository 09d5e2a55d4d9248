#pragma once

#include "simulator/msfs/simvar/MsfsRuntimeProfile.h"

namespace tarvo::simulator::msfs {

/// Which simulator a library belongs to: "SimConnect2024.dll", in any case of letters, to 2024 and all others to 2020.
MsfsRuntimeProfile profileOfLibrary(const QString &name);

/// Which simulator calls itself `application`, with the major version `major`; Unknown when neither tells. Deliberate:
/// a name without a keyword and version 11 count as 2024.
MsfsRuntimeProfile profileOfApplication(const QString &application, quint32 major);

} // namespace tarvo::simulator::msfs
