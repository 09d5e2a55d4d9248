#pragma once

#include "diagnosis/Finding.h"

#include <QHostAddress>

#include <chrono>

namespace tarvo::simulator::msfs {
class SimConnectBinding;
}

namespace tarvo::diagnosis {

/// True when X-Plane sends a value that it is asked for, within the limit. Waits.
bool xplaneAnswers(const QHostAddress &address, quint16 port, std::chrono::milliseconds limit);
/// `address`: null when the settings name none.
Finding judgeXPlane(const QHostAddress &address, quint16 port, bool answers);

/// What listens at the plugin's address.
enum class PluginState
{
    Nobody,
    Stranger, ///< somebody who doesn't speak the plugin's protocol, or nothing
    Plugin
};

/// The name that QLocalSocket takes for an nng address on this machine, "ipc://...".
QString localSocketName(const QString &ipcUrl, bool onWindows);
/// Looks how the other end begins and goes before it counts as a client: a plugin has room for one. Waits.
PluginState lookAtPlugin(const QString &socketName, std::chrono::milliseconds limit);
Finding judgePlugin(PluginState state);

/// `onWindows`: elsewhere there is no such simulator.
Finding judgeSimConnect(simulator::msfs::SimConnectBinding &binding, bool onWindows);

} // namespace tarvo::diagnosis
