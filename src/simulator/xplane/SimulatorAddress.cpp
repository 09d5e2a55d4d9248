#include "simulator/xplane/SimulatorAddress.h"

#include "ConfigKey.h"

namespace tarvo::simulator::xplane {

bool isLocalMachine(const QString &configured)
{
    const QString address = configured.trimmed().toLower();
    return address.isEmpty() || address == QLatin1String("127.0.0.1") || address == QLatin1String("localhost");
}

PluginAddress pluginAddress(const QString &configured, const QString &localUrl)
{
    if (isLocalMachine(configured))
        return {.url = localUrl, .local = true};
    // Both halves are the configured text on purpose: what the pilot enters must make the whole a valid address.
    const QString address = configured.trimmed();
    return {.url = QStringLiteral("tcp://%1:%2").arg(address, address), .local = false};
}

QHostAddress datarefHost(const QString &configured)
{
    return isLocalMachine(configured) ? QHostAddress(QHostAddress::LocalHost) : QHostAddress(configured.trimmed());
}

quint16 datarefPort(int configured)
{
    constexpr int highestPort = 65535;
    const bool exists = configured > 0 && configured <= highestPort;
    return static_cast<quint16>(exists ? configured : config::xplaneUdpPort.defaultValue);
}

} // namespace tarvo::simulator::xplane
