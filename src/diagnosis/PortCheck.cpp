#include "diagnosis/PortCheck.h"

#include "ServiceEndpoints.h"

#include <QTcpServer>
#include <QUdpSocket>
#include <QUrl>

namespace tarvo::diagnosis {

namespace {

QHostAddress localAddress(const QString &host)
{
    const QHostAddress address(host);
    if (host == QLatin1StringView("localhost"))
        return QHostAddress(QHostAddress::LocalHost);
    return address.isLoopback() ? address : QHostAddress();
}

PortFacts factsOf(bool isBound, QAbstractSocket::SocketError error, const QString &text)
{
    if (isBound)
        return {PortState::Free};
    return error == QAbstractSocket::AddressInUseError ? PortFacts{PortState::Taken}
                                                       : PortFacts{PortState::Forbidden, text};
}

} // namespace

QList<LocalPort> localServicePorts(const ServiceEndpoints &endpoints)
{
    const QUrl api(endpoints.apiBaseUrl);
    const bool isSecure = api.scheme() == QLatin1StringView("https");
    const QString practice = Texts::tr("练习网络（tarvo-practice）");
    QList<LocalPort> ports{
        {Texts::tr("账户服务"), practice, Protocol::Tcp, localAddress(api.host()),
         static_cast<quint16>(api.port(isSecure ? 443 : 80))},
        {Texts::tr("网络服务器"), practice, Protocol::Tcp, localAddress(endpoints.fsdHost), endpoints.fsdPort},
        {Texts::tr("语音服务器"), practice, Protocol::Tcp, localAddress(endpoints.voiceHost), endpoints.voiceTcpPort},
        {Texts::tr("语音服务器"), practice, Protocol::Udp, localAddress(endpoints.voiceHost), endpoints.voiceUdpPort},
    };
    ports.removeIf([](const LocalPort &port) { return port.address.isNull(); });
    return ports;
}

PortFacts tryPort(const LocalPort &port)
{
    if (port.protocol == Protocol::Tcp) {
        QTcpServer server;
        const bool isBound = server.listen(port.address, port.port);
        return factsOf(isBound, server.serverError(), server.errorString());
    }
    QUdpSocket socket;
    const bool isBound = socket.bind(port.address, port.port, QAbstractSocket::DontShareAddress);
    return factsOf(isBound, socket.error(), socket.errorString());
}

Finding judgePort(const LocalPort &port, const PortFacts &facts)
{
    const QString title = Texts::tr("本机 %1 端口 %2（%3）")
                              .arg(port.protocol == Protocol::Tcp ? QStringLiteral("TCP") : QStringLiteral("UDP"))
                              .arg(port.port)
                              .arg(port.owner);
    switch (facts.state) {
    case PortState::Taken:
        return {Mark::Good, title, Texts::tr("有程序在监听")};
    case PortState::Free:
        return {Mark::Bad, title, Texts::tr("空闲，没有程序在监听"),
                Texts::tr("启动 %1；已启动时检查它的端口设置。").arg(port.starter)};
    case PortState::Forbidden:
        break;
    }
    return {Mark::Bad, title, Texts::tr("系统不允许使用（%1）").arg(facts.error),
            Texts::tr("检查防火墙和安全软件，或换一个端口。")};
}

} // namespace tarvo::diagnosis
