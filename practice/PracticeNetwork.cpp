#include "practice/PracticeNetwork.h"

namespace tarvo::practice {

PracticeSettings PracticeSettings::ephemeral()
{
    PracticeSettings settings;
    settings.httpPort = 0;
    settings.fsdPort = 0;
    settings.xplanePort = 0;
    settings.voiceTcpPort = 0;
    settings.voiceUdpPort = 0;
    settings.pluginUrl.clear();
    settings.residents.present = false;
    settings.voicePeople.present = false;
    return settings;
}

namespace {
/// What the FSD server allows when there is a crowd: a client that meets it has some questions about each pilot of it,
/// all at once, and gets as many answers.
FsdSettings withRoomFor(const CrowdSettings &crowd, FsdSettings settings)
{
    constexpr int questions = 8;
    constexpr int answerBytes = 4096;
    settings.maxLinesPerSecond += questions * crowd.pilots;
    settings.maxQueuedBytes += answerBytes * crowd.pilots;
    return settings;
}
} // namespace

PracticeNetwork::PracticeNetwork(PracticeSettings settings, const common::Clock &clock, QObject *parent)
    : QObject(parent),
      m_settings(std::move(settings)),
      m_tokens(clock),
      m_account(m_accounts, m_tokens),
      m_fsd(m_accounts, m_tokens, withRoomFor(m_settings.crowd, m_settings.fsd), clock),
      m_scriptedClients(m_fsd),
      m_voice(
          m_accounts, m_tokens, [this](qint64 cid) { return callsignOf(cid); }, m_settings.voice, clock),
      m_voicePeople(m_voice, m_settings.voicePeople, clock),
      m_xplane(clock)
{
    if (!m_settings.replay.recording.isEmpty())
        m_replay = std::make_unique<ReplayServer>(m_settings.replay, clock);
    if (!m_settings.secondAddress.isNull())
        m_secondFsd = std::make_unique<FsdServer>(m_accounts, m_tokens, m_settings.fsd, clock);
    if (m_settings.residents.present)
        m_residents = std::make_unique<Residents>(m_fsd, m_settings.residents, clock);
    if (m_settings.residents.present && m_secondFsd)
        m_secondResidents = std::make_unique<Residents>(*m_secondFsd, m_settings.residents, clock);
    if (m_settings.crowd.pilots > 0)
        m_crowd = std::make_unique<Crowd>(m_fsd, m_settings.crowd, clock);
}

PracticeNetwork::~PracticeNetwork()
{
    stop();
}

bool PracticeNetwork::start()
{
    m_error.clear();
    const bool started = startServers() && (!m_settings.simulator || startSimulator());
    if (!started) {
        stop();
        return false;
    }
    if (m_residents)
        m_residents->start();
    if (m_secondResidents)
        m_secondResidents->start();
    if (m_crowd)
        m_crowd->start();
    m_voicePeople.start();
    return true;
}

bool PracticeNetwork::failed(const QString &what, const QString &why)
{
    m_error = QStringLiteral("%1: %2").arg(what, why);
    return false;
}

bool PracticeNetwork::startServers()
{
    for (const QHostAddress &address : {m_settings.address, m_settings.secondAddress}) {
        if (!address.isNull() && !address.isLoopback())
            return failed(address.toString(), QStringLiteral("not an address of this machine alone"));
    }
    if (!m_account.listen(m_settings.address, m_settings.httpPort))
        return failed(QStringLiteral("account service, TCP port %1").arg(m_settings.httpPort), m_account.errorString());
    if (!startFsd())
        return failed(QStringLiteral("FSD server, TCP port %1").arg(m_settings.fsdPort),
                      m_replay ? m_replay->errorString() : m_fsd.errorString());
    if (m_secondFsd && !m_secondFsd->listen(m_settings.secondAddress, m_fsd.port()))
        return failed(QStringLiteral("second FSD server, TCP port %1").arg(m_fsd.port()), m_secondFsd->errorString());
    if (!m_voice.listen(m_settings.address, m_settings.voiceTcpPort, m_settings.voiceUdpPort))
        return failed(QStringLiteral("voice server"), m_voice.errorString());
    return true;
}

bool PracticeNetwork::startFsd()
{
    return m_replay ? m_replay->listen(m_settings.address, m_settings.fsdPort)
                    : m_fsd.listen(m_settings.address, m_settings.fsdPort);
}

bool PracticeNetwork::startSimulator()
{
    QString url = m_settings.pluginUrl;
    if (url.isEmpty()) {
        m_pluginFolder = std::make_unique<QTemporaryDir>();
        url = QStringLiteral("ipc://%1").arg(m_pluginFolder->filePath(QStringLiteral("plugin.ipc")));
    }
    // A client that runs under Wine reaches no socket of Linux's by a file.
    if (!url.startsWith(QLatin1StringView("ipc://")) && !url.startsWith(QLatin1StringView("tcp://127.0.0.1:")))
        return failed(url, QStringLiteral("not an address of this machine alone"));
    if (!m_xplane.start(m_settings.address, m_settings.xplanePort, url))
        return failed(QStringLiteral("X-Plane"), m_xplane.errorString());
    return true;
}

void PracticeNetwork::stop()
{
    m_xplane.stop();
    if (m_crowd)
        m_crowd->stop();
    if (m_residents)
        m_residents->stop();
    if (m_secondResidents)
        m_secondResidents->stop();
    m_voicePeople.stop();
    m_voice.close();
    if (m_replay)
        m_replay->close();
    m_fsd.close();
    if (m_secondFsd)
        m_secondFsd->close();
    m_account.close();
    m_pluginFolder.reset();
}

/// A pilot who was handed over flies on the second server.
QString PracticeNetwork::callsignOf(qint64 cid) const
{
    const QString callsign = m_fsd.callsignOf(cid);
    return callsign.isEmpty() && m_secondFsd ? m_secondFsd->callsignOf(cid) : callsign;
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
