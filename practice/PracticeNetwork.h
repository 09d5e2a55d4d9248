#pragma once

#include "practice/AccountBook.h"
#include "practice/AccountService.h"
#include "practice/Cast.h"
#include "practice/Company.h"
#include "practice/Crowd.h"
#include "practice/FsdServer.h"
#include "practice/TokenAuthority.h"
#include "practice/XPlaneStandIn.h"

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
    QString pluginUrl = QStringLiteral("ipc:///tmp//tarvoclient.ipc"); ///< empty: a socket in a temporary folder
    bool simulator = true;                                             ///< false leaves X-Plane's addresses alone
    QHostAddress secondAddress; ///< another loopback address, such as 127.0.0.2, for a second FSD server on the same
                                ///< port, where clients can be sent to; null: none
    FsdSettings fsd;
    CompanySettings company;
    CrowdSettings crowd;

    /// Free ports, a plugin address of its own and no company, for tests.
    static PracticeSettings ephemeral();
};

/// The whole network for one pilot on one machine: account service, FSD server and an X-Plane to fly.
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
    /// Null unless the settings name a second address.
    FsdServer *secondFsd() { return m_secondFsd.get(); }
    /// Null when the settings want none.
    Company *company() { return m_company.get(); }
    /// The same people on the second server, whom a client that is handed over meets there; null without either.
    Company *secondCompany() { return m_secondCompany.get(); }
    XPlaneStandIn &xplane() { return m_xplane; }
    /// Clients of fsd() that say what they are told.
    Cast &cast() { return m_cast; }
    /// Where the plugin listens: what a client dials.
    QString pluginUrl() const;

private:
    bool startServers();
    bool startSimulator();
    bool failed(const QString &what, const QString &why);

    PracticeSettings m_settings;
    std::unique_ptr<QTemporaryDir> m_pluginFolder;
    AccountBook m_accounts;
    TokenAuthority m_tokens;
    AccountService m_account;
    FsdServer m_fsd;
    Cast m_cast;
    std::unique_ptr<FsdServer> m_secondFsd;
    std::unique_ptr<Company> m_company;
    std::unique_ptr<Company> m_secondCompany;
    std::unique_ptr<Crowd> m_crowd;
    XPlaneStandIn m_xplane;
    QString m_error;
};

} // namespace tarvo::practice
