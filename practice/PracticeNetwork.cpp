#include "practice/PracticeNetwork.h"

namespace tarvo::practice {

PracticeSettings PracticeSettings::ephemeral()
{
    PracticeSettings settings;
    settings.httpPort = 0;
    settings.fsdPort = 0;
    settings.xplanePort = 0;
    settings.pluginUrl.clear();
    return settings;
}

PracticeNetwork::PracticeNetwork(PracticeSettings settings, const common::Clock &clock, QObject *parent)
    : QObject(parent),
      m_settings(std::move(settings)),
      m_tokens(clock),
      m_account(m_accounts, m_tokens),
      m_fsd(m_accounts, m_tokens, m_settings.fsd),
      m_xplane(clock)
{
}

PracticeNetwork::~PracticeNetwork()
{
    stop();
}

bool PracticeNetwork::start()
{
    m_error.clear();
    if (!m_settings.address.isLoopback())
        m_error = QStringLiteral("%1 is not a loopback address").arg(m_settings.address.toString());
    else if (!m_account.listen(m_settings.address, m_settings.httpPort))
        m_error =
            QStringLiteral("account service, TCP port %1: %2").arg(m_settings.httpPort).arg(m_account.errorString());
    else if (!m_fsd.listen(m_settings.address, m_settings.fsdPort))
        m_error = QStringLiteral("FSD server, TCP port %1: %2").arg(m_settings.fsdPort).arg(m_fsd.errorString());
    else if (m_settings.simulator && !startSimulator())
        m_error = QStringLiteral("X-Plane, %1").arg(m_xplane.errorString());
    if (!m_error.isEmpty())
        stop();
    return m_error.isEmpty();
}

bool PracticeNetwork::startSimulator()
{
    QString url = m_settings.pluginUrl;
    if (url.isEmpty()) {
        m_pluginFolder = std::make_unique<QTemporaryDir>();
        url = QStringLiteral("ipc://%1").arg(m_pluginFolder->filePath(QStringLiteral("plugin.ipc")));
    }
    return m_xplane.start(m_settings.address, m_settings.xplanePort, url);
}

void PracticeNetwork::stop()
{
    m_xplane.stop();
    m_fsd.close();
    m_account.close();
    m_pluginFolder.reset();
}

QString PracticeNetwork::errorString() const
{
    return m_error;
}

QString PracticeNetwork::pluginUrl() const
{
    return m_settings.simulator ? m_xplane.plugin().url() : QString();
}

} // namespace tarvo::practice
