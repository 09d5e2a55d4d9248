#pragma once

#include <QByteArray>
#include <QString>

namespace tarvo {

/// Where the network's services are. A default-constructed value holds the addresses of this build (CMake cache values
/// TARVO_API_BASE_URL and its like); a test fills in loopback ports of its own.
struct ServiceEndpoints
{
    QString apiBaseUrl;          ///< account service, ending in "/api"
    QString fsdHost;             ///< host name or IPv4 address
    quint16 fsdPort = 6809;      ///< fixed on the real network
    QString voiceHost;           ///< host name or IP address
    quint16 voiceTcpPort = 6808; ///< control lines; fixed on the real network
    quint16 voiceUdpPort = 6807; ///< voice; fixed on the real network
    QString registerUrl;         ///< web page for new pilots
    QString updateUrl;           ///< web page with the newest version; may be empty
    QString docsUrl;             ///< web page with the documentation; may be empty
    /// nng address of the X-Plane plugin on this machine. The double slash is what the plugin listens on.
    QString localPluginUrl = QStringLiteral("ipc:///tmp//tarvoclient.ipc");

    ServiceEndpoints();
};

/// The 32 bytes that this build derives its configuration cipher's key from. Secret: never logged.
QByteArray configSecret();

} // namespace tarvo
