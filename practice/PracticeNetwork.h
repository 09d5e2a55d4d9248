#pragma once

#include "practice/account/AccountBook.h"
#include "practice/account/AccountService.h"
#include "practice/account/TokenAuthority.h"
#include "practice/fsd/FsdServer.h"
#include "practice/people/Crowd.h"
#include "practice/people/Residents.h"
#include "practice/people/ScriptedClients.h"
#include "practice/replay/ReplayServer.h"
#include "practice/voice/VoicePeople.h"
#include "practice/voice/VoiceServer.h"
#include "practice/xplane/XPlaneStandIn.h"

#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace tarvo::practice {

/// Where the practice network listens. Addresses are loopback only.
struct PracticeSettings
{
    QHostAddress address{QHostAddress::LocalHost};
    quint16 httpPort = 8080;
    quint16 fsdPort = 6809;
    quint16 xplanePort = 49000;
    quint16 voiceTcpPort = 6808;
    quint16 voiceUdpPort = 6807;
    QString pluginUrl = QStringLiteral("ipc:///tmp//tarvoclient.ipc"); ///< empty: a socket in a temporary folder
    bool simulator = true;                                             ///< false leaves X-Plane's addresses alone
    QHostAddress secondAddress; ///< another loopback address, such as 127.0.0.2, for a second FSD server on the same
                                ///< port, where clients can be sent to; null: none
    FsdSettings fsd;
    ResidentSettings residents;
    CrowdSettings crowd;
    VoiceSettings voice;
    VoicePeopleSettings voicePeople;
    ReplaySettings replay; ///< with a recording its server takes the place of the FSD server

    /// Free ports, a plugin address of its own and no residents, for tests.
    static PracticeSettings ephemeral();
};

/// The whole network for one pilot on one machine: account service, FSD server, voice server and an X-Plane to
/// fly.
class PracticeNetwork : public QObject
{
    Q_OBJECT

public:
    explicit PracticeNetwork(PracticeSettings settings = {}, const common::Clock &clock = common::systemClock(),
                             QObject *parent = nullptr);
    ~PracticeNetwork() override;

    /// Starts everything. On failure nothing is left running and errorString() names the port.
    bool start();
    void stop();
    QString errorString() const;

    AccountBook &accounts() { return m_accounts; }
    TokenAuthority &tokens() { return m_tokens; }
    AccountService &account() { return m_account; }
    FsdServer &fsd() { return m_fsd; }
    /// What serves in its place when the settings have a recording; else null.
    ReplayServer *replay() { return m_replay.get(); }
    /// Null unless the settings name a second address.
    FsdServer *secondFsd() { return m_secondFsd.get(); }
    /// Null when the settings want none.
    Residents *residents() { return m_residents.get(); }
    /// The same people on the second server, whom a client that is handed over meets there; null without either.
    Residents *secondResidents() { return m_secondResidents.get(); }
    VoiceServer &voice() { return m_voice; }
    VoicePeople &voicePeople() { return m_voicePeople; }
    XPlaneStandIn &xplane() { return m_xplane; }
    /// Clients of fsd() that say what they are told.
    ScriptedClients &scriptedClients() { return m_scriptedClients; }
    /// Where the plugin listens: what a client dials.
    QString pluginUrl() const;

private:
    bool startServers();
    bool startFsd();
    bool startSimulator();
    QString callsignOf(qint64 cid) const;
    bool failed(const QString &what, const QString &why);

    PracticeSettings m_settings;
    std::unique_ptr<QTemporaryDir> m_pluginFolder;
    AccountBook m_accounts;
    TokenAuthority m_tokens;
    AccountService m_account;
    FsdServer m_fsd;
    std::unique_ptr<ReplayServer> m_replay;
    ScriptedClients m_scriptedClients;
    std::unique_ptr<FsdServer> m_secondFsd;
    std::unique_ptr<Residents> m_residents;
    std::unique_ptr<Residents> m_secondResidents;
    std::unique_ptr<Crowd> m_crowd;
    VoiceServer m_voice;
    VoicePeople m_voicePeople;
    XPlaneStandIn m_xplane;
    QString m_error;
};

} // namespace tarvo::practice
