#include "soak/Hour.h"

#include <QCoreApplication>
#include <QDir>

namespace tarvo::test {

namespace {

constexpr int longestMs = 20'000;
constexpr int crowdSize = 100;
constexpr int stationCount = 40;
const QString own = QStringLiteral("AB1");
const QString fullConfiguration =
    QStringLiteral(R"({"config":{"is_full_data":true,"lights":{"nav_on":true},"gear_down":true,"on_ground":false}})");

/// Lines that nobody should send. None of them ends the session.
const QStringList hostileLines{
    QStringLiteral("X:abc"),
    QStringLiteral("#A"),
    QStringLiteral("#tmFOO:AB1:x"),
    QStringLiteral("@N:"),
    QStringLiteral("@N:TST1:x:x:x:x:x:x:x:x"),
    QStringLiteral("^TST1:1:2"),
    QStringLiteral("^TST1:nan:inf:1e999:-1e999:99999999999999:nan:1e308:1e308:x:y:z:-inf"),
    QStringLiteral("$CQ"),
    QStringLiteral("$CQTST1:AB1"),
    QStringLiteral("$CQTST1:AB1:ACC:{\"config\":"),
    QStringLiteral("$CQTST1:AB1:ACC:{\"config\":{\"lights\":7,\"engines\":{\"1\":[]},\"flaps_pct\":1e99}}"),
    QStringLiteral("$CRTST1:AB1:FP"),
    QStringLiteral("$CRSERVER:AB1:FP:=:=:CALLSIGN=:AIRCRAFT=////"),
    QStringLiteral("$CRTST1:AB1:ATIS:T"),
    QStringLiteral("$CRTST1:AB1:RN"),
    QStringLiteral("$CRTST1:AB1:CAPS"),
    QStringLiteral("#TMFOO:AB1"),
    QStringLiteral("#TMFOO:@:SELCAL ABCD"),
    QStringLiteral("%LBSR_TWR"),
    QStringLiteral("%LBSR_TWR:99999999999&&x:9:9:9:x:y:z"),
    QStringLiteral("$FPX"),
    QStringLiteral("#SBTST1:AB1:PI:X"),
    QStringLiteral("#SBTST1:AB1:PI:GEN:CSL="),
    QStringLiteral("$ERSERVER:AB1"),
    QStringLiteral("$ERSERVER:AB1:001:x:fatal in name only"),
    QStringLiteral("$XX"),
    QStringLiteral("$SFSERVER:AB1:99999999999"),
    QStringLiteral("#DP"),
    QStringLiteral("#DPAB1"),
};

qsizetype entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

Footprint Footprint::ofProcess()
{
    return {.descriptors = entriesOf(QStringLiteral("/proc/self/fd")),
            .threads = entriesOf(QStringLiteral("/proc/self/task"))};
}

QString Footprint::text() const
{
    return QStringLiteral("%1 descriptors, %2 threads, %3 objects, %4 aircraft, %5 controllers")
        .arg(descriptors)
        .arg(threads)
        .arg(objects)
        .arg(aircraft)
        .arg(controllers);
}

Hour::Hour() : client(std::make_unique<Client>(network, Protocol::Classic))
{
    m_pages = std::make_unique<Pages>(client->icao);
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

// --- the session ---

bool Hour::begin()
{
    if (!network.started)
        return fails(QStringLiteral("no network"));
    if (!client->signIn())
        return fails(QStringLiteral("sign-in"));
    m_pages->attach(*client);
    QObject::connect(client->manager.get(), &manager::NetworkManager::simulatorConnectionStateChanged,
                     client->manager.get(), [this](bool connected) { m_simulatorConnected = connected; });
    return client->activateXPlane() || fails(QStringLiteral("X-Plane"));
}

void Hour::end()
{
    client->signOut();
    m_pages.reset();
    client.reset();
}

Footprint Hour::footprint() const
{
    Footprint now = Footprint::ofProcess();
    now.objects = client->manager->findChildren<QObject *>().size() + client->traffic->children().size() +
                  client->controllers->children().size() + client->aircraft->children().size();
    now.aircraft = client->manager->remoteAircraft().size() + client->traffic->aircraft().size();
    now.controllers = client->controllers->controllers().size() + m_pages->messages.nearbyClients().size();
    return now;
}

bool Hour::connectAs(bool observer)
{
    client->events.clear();
    const bool asked = observer ? client->connectObserver() : client->connectPilot();
    const bool there = asked && QTest::qWaitFor([this] { return client->events.contains(u"connected AB1"_qs); });
    return there ||
           fails(QStringLiteral("connecting: ") + client->notifications.value(client->notifications.size() - 1));
}

bool Hour::awaitEnd()
{
    const auto over = [this] {
        return !client->events.isEmpty() && client->events.last().startsWith(u"disconnected") && connections() == 0;
    };
    if (!QTest::qWaitFor(over, longestMs))
        return fails(QStringLiteral("ending a connection"));
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
    if (!server.ping(own))
        return fails(QStringLiteral("the client is not there"));
    const auto answered = [this] { return !network.linesOf(u"$PO"_qs).isEmpty(); };
    return QTest::qWaitFor(answered, longestMs) || fails(QStringLiteral("no answer to a ping"));
}

bool Hour::settle()
{
    return settleAt(fsd());
}

void Hour::say(const QString &line)
{
    fsd().sendLine(own, line);
}

bool Hour::sayAll(const QStringList &lines)
{
    for (const QString &line : lines)
        say(line);
    return settle();
}

// --- scenes ---

bool Hour::logins()
{
    for (int i = 0; i < 12; ++i) {
        const bool observer = i % 2 == 0;
        if (!connectAs(observer))
            return false;
        if (!sayAll(arrivalOf(callsignOf(++m_generation, 1)) + QStringList{QStringLiteral("#TMSERVER:AB1:hello")}))
            return false;
        if (!endSomehow(i))
            return false;
    }
    fsd().setRejectLogins(true);
    client->events.clear();
    const bool asked = client->connectObserver();
    const bool refused = asked && awaitEnd();
    fsd().setRejectLogins(false);
    return refused || fails(QStringLiteral("a refused login"));
}

bool Hour::endSomehow(int kind)
{
    switch (kind % 6) {
    case 0:
        fsd().kill(own, QStringLiteral("Bad manners"));
        break;
    case 1:
        network.practice.xplane().plugin().forceDisconnect(QStringLiteral("Replay mode"));
        break;
    case 2:
        fsd().dropClient(own);
        break;
    case 3: // in the middle of a line
        fsd().sendBytes(own, QByteArrayLiteral("@N:TST1:2000:1:40.0"));
        fsd().dropClient(own);
        break;
    case 4: // in the middle of traffic
        for (int i = 0; i < 50; ++i)
            say(fastReport(callsignOf(m_generation, 1), i));
        client->manager->disconnectFromNetwork();
        break;
    default:
        say(QStringLiteral("$ERSERVER:AB1:002::Fatal"));
        fsd().kill(own, {});
    }
    return awaitEnd();
}

bool Hour::badLines()
{
    if (!connectAs(false))
        return false;
    for (int i = 0; i < 150; ++i) {
        if (!sayAll(hostileLines))
            return false;
    }
    if (!everyLineAndHalves(hostileLines + arrivalOf(callsignOf(++m_generation, 1))))
        return false;
    fsd().sendBytes(own, QByteArray(300'000, 'x')); // a line that never ends
    fsd().sendBytes(own, QByteArrayLiteral("\r\n"));
    QStringList chatter;
    for (int i = 0; i < 400; ++i) {
        chatter += QStringLiteral("#TMSERVER:AB1:notice %1").arg(i);
        chatter += QStringLiteral("#TMTST%1:AB1:%2").arg(i).arg(QString(200, QLatin1Char('x')));
        chatter += QStringLiteral("#TMTST1:*:to all");
    }
    return sayAll(chatter) && leave();
}

/// Each line in two pieces, cut at every tenth of it.
bool Hour::everyLineAndHalves(const QStringList &lines)
{
    for (const QString &line : lines) {
        const QByteArray bytes = line.toLatin1() + "\r\n";
        for (qsizetype cut = 2; cut + 1 < bytes.size(); cut += 10) {
            fsd().sendBytes(own, bytes.left(cut));
            QCoreApplication::processEvents(); // so that mostly they are read one by one
            fsd().sendBytes(own, bytes.mid(cut));
            QCoreApplication::processEvents();
        }
    }
    return settle();
}

QString Hour::callsignOf(int generation, int pilot)
{
    return QStringLiteral("T%1P%2").arg(generation).arg(pilot);
}

QStringList Hour::arrivalOf(const QString &callsign)
{
    return {QStringLiteral("#AP%1:SERVER:1002::1:9:1:Somebody").arg(callsign),
            QStringLiteral("@N:%1:2000:1:40.0:116.0:3000:250:4261561312:100").arg(callsign),
            QStringLiteral("#SB%1:AB1:PI:GEN:EQUIPMENT=B738:LIVERY=SWIFT_X").arg(callsign),
            QStringLiteral("$CRSERVER:AB1:FP:CALLSIGN=%1:TYPE=H/B744/L").arg(callsign),
            QStringLiteral("$CR%1:AB1:CAPS:VERSION=1:ACCONFIG=1").arg(callsign),
            QStringLiteral("$CQ%1:AB1:ACC:%2").arg(callsign, fullConfiguration),
            fastReport(callsign, 0)};
}

QString Hour::fastReport(const QString &callsign, int step)
{
    return QStringLiteral("^%1:%2:116.0:3000.00:2900.00:4261561312:77.1234:-1.5:0.25:0.01:-0.02:0.03:12.50")
        .arg(callsign)
        .arg(40 + step * 1e-5, 0, 'f', 6);
}

/// A hundred aircraft come, fly and go; ten stay until the connection ends.
bool Hour::crowd()
{
    if (!connectAs(false) || !stations())
        return false;
    const int generation = ++m_generation;
    for (int pilot = 0; pilot < crowdSize; ++pilot) {
        if (!sayAll(arrivalOf(callsignOf(generation, pilot))))
            return false;
    }
    for (int step = 1; step <= 40; ++step) {
        QStringList lines;
        for (int pilot = 0; pilot < crowdSize; ++pilot)
            lines += fastReport(callsignOf(generation, pilot), step);
        lines += QStringLiteral("$CQ%1:AB1:ACC:{\"config\":{\"gear_down\":%2}}")
                     .arg(callsignOf(generation, step), step % 2 == 0 ? u"true" : u"false");
        if (!sayAll(lines))
            return false;
    }
    if (client->manager->remoteAircraft().size() != crowdSize || client->traffic->aircraft().size() != crowdSize)
        return fails(QStringLiteral("%1 and %2 aircraft of a crowd")
                         .arg(client->manager->remoteAircraft().size())
                         .arg(client->traffic->aircraft().size()));
    QStringList farewells;
    for (int pilot = 10; pilot < crowdSize; ++pilot)
        farewells += QStringLiteral("#DP%1:1002").arg(callsignOf(generation, pilot));
    if (!sayAll(farewells))
        return false;
    const auto gone = [this] {
        return client->manager->remoteAircraft().size() == 10 && client->traffic->aircraft().size() == 10;
    };
    return (QTest::qWaitFor(gone, longestMs) || fails(QStringLiteral("aircraft that left"))) && leave();
}

bool Hour::stations()
{
    QStringList lines;
    for (int i = 0; i < stationCount; ++i) {
        const QString callsign = QStringLiteral("ZB%1_TWR").arg(i);
        lines += QStringLiteral("%%1:%2:4:100:5:40.0:116.0:0").arg(callsign).arg(18000 + 25 * i);
        lines += QStringLiteral("$CRSERVER:AB1:ATC:Y:%1").arg(callsign);
        lines += QStringLiteral("$CR%1:AB1:RN:Somebody:x:5").arg(callsign);
        client->manager->requestControllerAtis(callsign);
        lines += QStringLiteral("$CR%1:AB1:ATIS:T:Information A").arg(callsign);
        if (i % 2 == 0)
            lines += QStringLiteral("$CR%1:AB1:ATIS:E:2").arg(callsign);
    }
    if (!sayAll(lines))
        return false;
    if (client->controllers->controllers().size() != stationCount)
        return fails(QStringLiteral("%1 stations").arg(client->controllers->controllers().size()));
    return sayAll({QStringLiteral("#DAZB0_TWR:1"), QStringLiteral("#TMFOO:@18000:SELCAL EFGH"),
                   QStringLiteral("#TMFOO:@18000&18025:text on the radio")});
}

bool Hour::awaitSimulator()
{
    return QTest::qWaitFor([this] { return m_simulatorConnected; }, longestMs) ||
           fails(QStringLiteral("X-Plane does not come back"));
}

bool Hour::pluginDies()
{
    practice::PluginPeer &plugin = network.practice.xplane().plugin();
    const QString url = plugin.url();
    if (!connectAs(false))
        return false;
    for (int i = 0; i < 2; ++i) {
        const QString callsign = callsignOf(++m_generation, 1);
        if (!sayAll(arrivalOf(callsign)))
            return false;
        if (i == 0 && !plugin.shutDown())
            return fails(QStringLiteral("nobody at the plugin"));
        plugin.close();
        for (int step = 1; step <= 300; ++step) { // into the void
            say(fastReport(callsign, step));
            if (step % 100 == 0 && !settle())
                return false;
        }
        if (!plugin.listen(url))
            return fails(QStringLiteral("no plugin address"));
        plugin.sendRaw(QByteArrayLiteral("\xc1 no message"));
        client->manager->reconnectSimulator();
        if (!awaitSimulator())
            return false;
    }
    return leave();
}

bool Hour::simulatorsAreReplaced()
{
    if (!connectAs(false))
        return false;
    const int generation = ++m_generation;
    for (int pilot = 0; pilot < 20; ++pilot) {
        for (const QString &line : arrivalOf(callsignOf(generation, pilot)))
            say(line);
        if (pilot % 10 == 9 && !client->activateXPlane())
            return fails(QStringLiteral("another X-Plane"));
        for (int step = 1; step < 20; ++step)
            say(fastReport(callsignOf(generation, pilot), step));
    }
    return settle() && leave();
}

bool Hour::serversChange()
{
    practice::FsdServer *here = &fsd();
    practice::FsdServer *there = m_second.get();
    if (!connectAs(true) || !settle())
        return false;
    for (int i = 0; i < 4; ++i) {
        here->sendLine(own, QStringLiteral("#TMSERVER:AB1:moving"));
        if (!here->handOver(own, *there))
            return fails(QStringLiteral("hand-over"));
        here->sendBytes(own, QByteArrayLiteral("^HALF:1:2")); // the old server's last words
        const auto moved = [&] { return there->callsigns().contains(own) && here->connectionCount() == 0; };
        if (!QTest::qWaitFor(moved, longestMs))
            return fails(QStringLiteral("server change %1").arg(i));
        std::swap(here, there);
        if (!settleAt(*here))
            return false;
    }
    here->redirect(own, QStringLiteral("127.0.0.3")); // nobody is there
    return settleAt(*here) && leave();
}

} // namespace tarvo::test
