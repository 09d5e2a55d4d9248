#pragma once

#include <QString>

#include <atomic>
#include <functional>

namespace tarvo::simulator::msfs {

/// Tells `visit` the path of every file named "aircraft.cfg", in any case, that has "/SimObjects/" in its path, `root`
/// included. A folder's own file comes first, then its folders sorted by name, so that the order is the same on every
/// machine. Links to folders aren't entered, nor what lies deeper than any package. `root`: absolute and clean.
/// Ends early when `isStopped` says so, which is looked at for every file and folder.
void walkAircraftConfigs(const QString &root, const std::atomic<bool> &isStopped,
                         const std::function<void(const QString &path)> &visit);

} // namespace tarvo::simulator::msfs
