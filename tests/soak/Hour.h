#pragma once

#include "soak/Pages.h"

#include <QElapsedTimer>
#include <QStringList>

#include <memory>
#include <optional>

namespace tarvo::test {

/// What a process holds on to. Two moments that should be alike must not differ in it.
struct Footprint
{
    qsizetype descriptors = 0; ///< files and sockets; 0 where the system doesn't tell
    qsizetype threads = 0;     ///< 0 where the system doesn't tell
    qsizetype objects = 0;     ///< children of the session's managers, of all generations
    qsizetype aircraft = 0;    ///< in both lists
    qsizetype controllers = 0;

    static Footprint ofProcess();
    bool operator==(const Footprint &) const = default;
    QString text() const;
};

/// One client and one network, and all that may happen between them. Every scene begins and ends signed in, with
/// X-Plane connected and the FSD server not; it gives false, with what it was about in `where`, when the client does
/// not do what it must.
class Hour
{
public:
    Hour();

    bool begin();
    bool logins();
    bool badLines();
    bool crowd();
    bool pluginDies();
    bool simulatorsAreReplaced();
    bool serversChange();
    void end();

    Footprint footprint() const;
    Pages &pages() { return *m_pages; }
    int connections() { return network.practice.fsd().connectionCount() + m_second->connectionCount(); }

    Network network;
    std::unique_ptr<Client> client;
    QString where;

private:
    bool fails(const QString &what);
    bool connectAs(bool observer);
    bool awaitEnd();
    bool leave();
    /// Waits until the client has dealt with all that the server has sent so far.
    bool settle();
    bool settleAt(practice::FsdServer &server);
    bool awaitSimulator();
    practice::FsdServer &fsd() { return network.practice.fsd(); }

    void say(const QString &line);
    bool sayAll(const QStringList &lines);
    bool everyLineAndHalves(const QStringList &lines);
    static QString callsignOf(int generation, int pilot);
    static QStringList arrivalOf(const QString &callsign);
    static QString fastReport(const QString &callsign, int step);
    bool stations();
    bool endSomehow(int kind);

    std::unique_ptr<practice::FsdServer> m_second;
    std::unique_ptr<Pages> m_pages;
    int m_generation = 0;
    bool m_simulatorConnected = false;
};

} // namespace tarvo::test
