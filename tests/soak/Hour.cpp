#include "soak/Hour.h"

#include <QElapsedTimer>

#include <algorithm>

namespace tarvo::test {

namespace {

constexpr int steadyMs = 500;

} // namespace

Hour::Hour() : client(std::make_unique<Client>(network, Protocol::Classic))
{
    m_second = std::make_unique<practice::FsdServer>(network.practice.accounts(), network.practice.tokens(),
                                                     Network::quietSettings().fsd);
    network.listenTo(*m_second);
    network.started = network.started && m_second->listen(QHostAddress(QStringLiteral("127.0.0.2")), fsd().port());
}

bool Hour::fails(const QString &what)
{
    where = what;
    return false;
}

bool Hour::waitFor(const std::function<bool()> &condition, const QString &what)
{
    m_watch.restart(); // what the hour itself did before is not the client's
    const bool came = test::waitFor(condition);
    const ThreadTime longest = m_watch.longest();
    m_longestStandstill.wallMs = std::max(m_longestStandstill.wallMs, longest.wallMs);
    m_longestStandstill.processorMs = std::max(m_longestStandstill.processorMs, longest.processorMs);
    return came || fails(what);
}

// --- the login session ---

bool Hour::signIn()
{
    if (!network.started)
        return fails(QStringLiteral("no network"));
    if (!client->signIn())
        return fails(QStringLiteral("sign-in"));
    m_pages = std::make_unique<Pages>(*client);
    QObject::connect(client->manager.get(), &manager::NetworkManager::simulatorConnectionStateChanged,
                     client->manager.get(), [this](bool connected) { m_simulatorConnected = connected; });
    return client->activateXPlane() || fails(QStringLiteral("X-Plane"));
}

void Hour::signOut()
{
    client->manager->disconnectFromNetwork();
    m_pages.reset(); // before the managers, as the main window does
    client->signOut();
    m_simulatorConnected = false;
}

void Hour::end()
{
    m_pages.reset();
    client.reset();
}

Footprint Hour::footprint() const
{
    Footprint now = Footprint::ofProcess();
    now.objects = client->manager->findChildren<QObject *>().size() + client->traffic->children().size() +
                  client->controllers->children().size() + client->aircraft->children().size();
    now.aircraft = client->manager->remoteAircraft().size();
    now.records = client->traffic->aircraft().size();
    now.controllers = client->controllers->controllers().size();
    now.nearby = m_pages->messages.nearbyClients().size();
    now.sessions = m_pages->messages.privateSessions().size();
    now.messages = m_pages->messages.messages().size();
    now.events = m_pages->server.recentEvents().size();
    now.logLines = m_pages->logLines();
    return now;
}

Footprint Hour::steadyFootprint()
{
    // What the test itself has noted down counts as little as what is still on its way out.
    network.heard = {};
    client->notifications = {};
    client->events = {};
    return steady([this] { return footprint(); });
}

Footprint Hour::steady(const std::function<Footprint()> &sample)
{
    Footprint last = sample();
    QElapsedTimer unchanged;
    unchanged.start();
    const auto isSteady = [&] {
        if (const Footprint now = sample(); now != last) {
            last = now;
            unchanged.restart();
        }
        return unchanged.elapsed() >= steadyMs;
    };
    if (!QTest::qWaitFor(isSteady, patienceMs)) // not at every turn
        qWarning("What the process holds does not come to rest");
    return last;
}

// --- the connection ---

bool Hour::connectAs(bool observer)
{
    client->events.clear();
    // X-Plane may just have come back: a pilot is refused until its first live sample is there.
    const auto accepted = [&] { return observer ? client->connectObserver() : client->connectPilot(); };
    const auto connected = [this] { return client->events.contains(u"connected AB1"_qs); };
    return (QTest::qWaitFor(accepted, patienceMs) && waitFor(connected, {})) || // not asked at every turn
           fails(QStringLiteral("connecting: ") + client->notifications.value(client->notifications.size() - 1));
}

bool Hour::awaitEnd()
{
    const auto over = [this] {
        return !client->events.isEmpty() && client->events.last().startsWith(u"disconnected") && connections() == 0;
    };
    if (!waitFor(over, QStringLiteral("ending a connection")))
        return false;
    client->notifications.clear();
    network.heard.clear();
    return true;
}

bool Hour::leave()
{
    client->manager->disconnectFromNetwork();
    return awaitEnd();
}

bool Hour::settleAt(practice::FsdServer &server)
{
    network.heard.clear();
    if (!server.ping(ownCallsign))
        return fails(QStringLiteral("the client is not there"));
    const auto answered = [this] { return !network.linesOf(u"$PO"_qs).isEmpty(); };
    if (!waitFor(answered, QStringLiteral("no answer to a ping")))
        return false;
    const QString excess = footprint().excessOver(Footprint::bounds());
    return excess.isEmpty() || fails(excess);
}

bool Hour::settle()
{
    return settleAt(fsd());
}

void Hour::say(const QString &line)
{
    fsd().sendLine(ownCallsign, line);
}

bool Hour::sayAll(const QStringList &lines)
{
    for (const QString &line : lines)
        say(line);
    return settle();
}

bool Hour::awaitSimulator()
{
    return waitFor([this] { return m_simulatorConnected; }, QStringLiteral("X-Plane does not come back"));
}

} // namespace tarvo::test
