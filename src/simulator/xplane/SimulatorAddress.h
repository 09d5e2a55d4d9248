#pragma once

#include <QHostAddress>
#include <QString>

namespace tarvo::simulator::xplane {

// Blanks around a configured address don't count.

/// True when a configured address means this machine: empty, "127.0.0.1" or "localhost" in any case.
bool isLocalMachine(const QString &configured);

/// Where the plugin listens, as an nng address.
struct PluginAddress
{
    QString url;
    bool local; ///< on this machine
};

/// `localUrl` on this machine, else a TCP address that is made of the configured text alone.
PluginAddress pluginAddress(const QString &configured, const QString &localUrl);

/// Where X-Plane's UDP interface is. Null when the text is no IP address: then nothing is sent and nothing accepted.
QHostAddress datarefHost(const QString &configured);

/// The port of X-Plane's UDP interface; the setting's default where the configured number is none.
quint16 datarefPort(int configured);

} // namespace tarvo::simulator::xplane
