#pragma once

#include "soak/Footprint.h"
#include "soak/Pages.h"
#include "support/MainThreadWatch.h"

#include <QStringList>

#include <functional>
#include <memory>

namespace tarvo::test {

inline const QString ownCallsign = QStringLiteral("AB1");

/// One client and one network, and all that may happen between them. Every scenario begins and ends signed in, with
/// X-Plane connected and the FSD server not; it gives false, with what it was about in `where`, when the client does
/// not do what it must, or holds more than it may.
class Hour
{
public:
    Hour();

    /// Composes a login session; there may be any number, one after the other.
    bool signIn();
    void signOut();
    /// The client goes, after the last session.
    void end();

    bool logins();
    bool badLines();
    bool floods();
    bool crowd();
    bool talks();
    bool pluginDies();
    bool simulatorsAreReplaced();
    bool serversChange();

    Footprint footprint() const;
    /// Once nothing has changed for half a second.
    Footprint steadyFootprint();
    static Footprint steady(const std::function<Footprint()> &sample);
    /// The longest that the main thread has stood still while the hour waited; the network's own work is in it.
    ThreadTime longestStandstill() const { return m_longestStandstill; }
    int connections() { return network.practice.fsd().connectionCount() + m_second->connectionCount(); }

    Network network;
    std::unique_ptr<Client> client;
    QString where;

private:
    bool fails(const QString &what);
    /// Fails with `what` when it takes longer than anything may.
    bool waitFor(const std::function<bool()> &condition, const QString &what);
    bool connectAs(bool observer);
    bool awaitEnd();
    bool leave();
    /// Waits until the client has dealt with all that the server has sent so far, and looks what it holds.
    bool settle();
    bool settleAt(practice::FsdServer &server);
    bool awaitSimulator();
    practice::FsdServer &fsd() { return network.practice.fsd(); }

    void say(const QString &line);
    bool sayAll(const QStringList &lines);
    /// That many lines, each made from its number.
    bool flood(int count, const std::function<QString(int)> &line);
    bool everyLineAndHalves(const QStringList &lines);
    static QString callsignOf(int generation, int pilot);
    static QStringList arrivalOf(const QString &callsign);
    static QString fastReport(const QString &callsign, int step);
    bool stations();
    bool inventedStations();
    bool inventedSenders();
    bool endSomehow(int kind);
    bool sayEverywhere();
    bool pluginSpeaks();
    bool pluginReturns(const QString &url);

    MainThreadWatch m_watch;
    ThreadTime m_longestStandstill;
    std::unique_ptr<practice::FsdServer> m_second;
    std::unique_ptr<Pages> m_pages; ///< as long as there is a session
    int m_generation = 0;           ///< makes callsigns that have never been there
    int m_rounds = 0;               ///< of logins()
    bool m_simulatorConnected = false;
};

} // namespace tarvo::test
