#pragma once

#include <QString>

namespace tarvo {

/// Where an installed Microsoft Flight Simulator keeps its packages. A folder that wasn't found is empty.
struct MsfsFolders
{
    QString packages2020;
    QString packages2024;
    QString community2020;
    QString community2024;

    bool operator==(const MsfsFolders &) const = default;
};

/// Reads the simulator's own configuration files under the two Windows application data folders (LOCALAPPDATA and
/// APPDATA). An empty argument leaves its candidates out. Only folders that exist are given.
MsfsFolders detectMsfsFolders(const QString &localAppData, const QString &appData);

} // namespace tarvo
