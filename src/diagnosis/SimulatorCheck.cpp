#include "diagnosis/SimulatorCheck.h"

#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/xplane/RrefPacket.h"

#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QUdpSocket>

namespace tarvo::diagnosis {

namespace {

constexpr QByteArrayView askedDataref = "sim/flightmodel/position/groundspeed";
constexpr int askedRateHz = 20;
constexpr qint64 largestDatagram = 65536;
/// How an nng peer of the kind "pair, version 1" begins.
constexpr QByteArrayView pluginGreeting("\0SP\0\0\x11\0\0", 8);

int msLeft(const QDeadlineTimer &deadline)
{
    return static_cast<int>(deadline.remainingTime());
}

} // namespace

bool xplaneAnswers(const QHostAddress &address, quint16 port, std::chrono::milliseconds limit)
{
    using simulator::xplane::RrefReply;
    using simulator::xplane::subscribePacket;
    QUdpSocket socket;
    if (!socket.bind(QHostAddress(QHostAddress::AnyIPv4), 0))
        return false;
    socket.writeDatagram(subscribePacket(askedRateHz, 0, askedDataref), address, port);
    bool answered = false;
    for (const QDeadlineTimer deadline(limit); !answered && socket.waitForReadyRead(msLeft(deadline));) {
        QByteArray datagram(largestDatagram, Qt::Uninitialized);
        QHostAddress sender;
        const qint64 size = socket.readDatagram(datagram.data(), datagram.size(), &sender);
        answered = size > 0 && sender.isEqual(address, QHostAddress::ConvertV4MappedToIPv4) &&
                   RrefReply(QByteArrayView(datagram).first(size)).isValid();
    }
    socket.writeDatagram(subscribePacket(0, 0, askedDataref), address, port); // no more of it
    return answered;
}

Finding judgeXPlane(const QHostAddress &address, quint16 port, bool answers)
{
    const QString title = QStringLiteral("X-Plane");
    if (address.isNull())
        return {Mark::Bad, title, Texts::tr("设置中的地址不是 IP 地址"), Texts::tr("在“设置”页改正 X-Plane 的地址。")};
    const QString where = QStringLiteral("UDP %1:%2").arg(address.toString()).arg(port);
    if (answers)
        return {Mark::Good, title, Texts::tr("%1 有应答").arg(where)};
    return {Mark::Bad, title, Texts::tr("%1 没有应答").arg(where),
            Texts::tr(
                "启动 X-Plane 并进入飞行；检查它的网络设置（UDP 端口）和防火墙。使用 MSFS 时加上 --simulator msfs。")};
}

QString localSocketName(const QString &ipcUrl, bool onWindows)
{
    const QString path = ipcUrl.mid(QLatin1StringView("ipc://").size());
    return onWindows ? QStringLiteral("\\\\.\\pipe\\") + path : path; // as nng names them
}

PluginState lookAtPlugin(const QString &socketName, std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    QLocalSocket socket;
    socket.connectToServer(socketName);
    if (!socket.waitForConnected(msLeft(deadline)))
        return PluginState::Nobody;
    while (socket.bytesAvailable() < pluginGreeting.size() && socket.waitForReadyRead(msLeft(deadline))) {
    }
    return socket.read(pluginGreeting.size()) == pluginGreeting ? PluginState::Plugin : PluginState::Stranger;
}

Finding judgePlugin(PluginState state)
{
    const QString title = Texts::tr("X-Plane 插件");
    switch (state) {
    case PluginState::Plugin:
        return {Mark::Good, title, Texts::tr("在运行")};
    case PluginState::Stranger:
        return {Mark::Bad, title, Texts::tr("它的地址上是别的程序，或插件没有应答"), Texts::tr("重新启动 X-Plane。")};
    case PluginState::Nobody:
        break;
    }
    return {Mark::Bad, title, Texts::tr("没有运行"),
            Texts::tr("把插件装到 X-Plane 的 Resources/plugins 文件夹，然后重新启动 X-Plane。")};
}

Finding judgeSimConnect(simulator::msfs::SimConnectBinding &binding, bool onWindows)
{
    const QString title = QStringLiteral("SimConnect");
    if (!onWindows)
        return {Mark::Skipped, title, Texts::tr("只在 Windows 上使用")};
    QStringList failures;
    for (const char *name : {"SimConnect2024.dll", "SimConnect.dll"}) { // as the client tries them
        const QString failure = binding.bind(QLatin1StringView(name));
        if (failure.isEmpty())
            return {Mark::Good, title, Texts::tr("%1 可用").arg(binding.name())};
        failures << failure;
    }
    return {Mark::Bad, title, failures.join(QStringLiteral("；")),
            Texts::tr("安装 MSFS，并把它附带的 SimConnect.dll 放在 TarvoClient.exe 旁边。使用 X-Plane 时加上 "
                      "--simulator xplane。")};
}

} // namespace tarvo::diagnosis
