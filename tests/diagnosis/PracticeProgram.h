#pragma once

#include "ServiceEndpoints.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace tarvo::test {

/// The practice network as a program of its own, on free ports.
class PracticeProgram
{
public:
    ~PracticeProgram()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }

    /// False when it doesn't come up.
    bool start()
    {
        m_process.start(QStringLiteral(TARVO_PRACTICE_PROGRAM),
                        {QStringLiteral("--http-port=0"), QStringLiteral("--fsd-port=0"),
                         QStringLiteral("--xplane-port=0"), QStringLiteral("--voice-port=0"),
                         QStringLiteral("--voice-udp-port=0"), QStringLiteral("--quiet"),
                         QStringLiteral("--plugin=ipc://") + m_folder.filePath(QStringLiteral("p.ipc"))});
        while (!m_said.contains(QStringLiteral(" ready "))) {
            if (!m_process.waitForReadyRead())
                return false;
            m_said += QString::fromUtf8(m_process.readAll());
        }
        return true;
    }
    quint16 xplanePort() const { return port(QStringLiteral("serving UDP port (\\d+), plugin")); }
    ServiceEndpoints endpoints() const
    {
        ServiceEndpoints endpoints;
        endpoints.apiBaseUrl =
            QStringLiteral("http://127.0.0.1:%1/api").arg(port(QStringLiteral("http://[^:]+:(\\d+)")));
        endpoints.fsdHost = QStringLiteral("127.0.0.1");
        endpoints.fsdPort = port(QStringLiteral("fsd +serving [^:]+:(\\d+)"));
        endpoints.voiceHost = QStringLiteral("127.0.0.1");
        endpoints.voiceTcpPort = port(QStringLiteral("voice +serving [^:]+:(\\d+)"));
        endpoints.voiceUdpPort = port(QStringLiteral("voice +serving .*, UDP port (\\d+)"));
        endpoints.localPluginUrl = QStringLiteral("ipc://") + m_folder.filePath(QStringLiteral("p.ipc"));
        return endpoints;
    }

private:
    quint16 port(const QString &pattern) const
    {
        return static_cast<quint16>(QRegularExpression(pattern).match(m_said).captured(1).toUInt());
    }

    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_said;
};

} // namespace tarvo::test
