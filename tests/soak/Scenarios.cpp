// What happens in the hour.

#include "soak/Hour.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace tarvo::test {

namespace {

constexpr int crowdSize = 100;
constexpr int stationCount = 40;
constexpr int floodSize = 2100;  ///< more than any list but that of the aircraft may hold
constexpr int senderCount = 250; ///< more than there may be private sessions
constexpr int linesAtOnce = 150; ///< the server cuts off who lets too much pile up
constexpr int longestSender = 1000;
constexpr int textCount = 30;
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

} // namespace

bool Hour::logins()
{
    ++m_rounds;
    for (int i = 0; i < 6; ++i) {
        const bool observer = (i + m_rounds) % 2 == 0;
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
        fsd().kill(ownCallsign, QStringLiteral("Bad manners"));
        break;
    case 1:
        network.practice.xplane().plugin().forceDisconnect(QStringLiteral("Replay mode"));
        break;
    case 2:
        fsd().dropClient(ownCallsign);
        break;
    case 3: // in the middle of a line
        fsd().sendBytes(ownCallsign, QByteArrayLiteral("@N:TST1:2000:1:40.0"));
        fsd().dropClient(ownCallsign);
        break;
    case 4: // in the middle of traffic
        for (int i = 0; i < 50; ++i)
            say(fastReport(callsignOf(m_generation, 1), i));
        client->manager->disconnectFromNetwork();
        break;
    default:
        say(QStringLiteral("$ERSERVER:AB1:002::Fatal"));
        fsd().kill(ownCallsign, {});
    }
    return awaitEnd();
}

bool Hour::badLines()
{
    if (!connectAs(false))
        return false;
    for (int i = 0; i < 40; ++i) {
        if (!sayAll(hostileLines))
            return false;
    }
    if (!everyLineAndHalves(hostileLines + arrivalOf(callsignOf(++m_generation, 1))))
        return false;
    fsd().sendBytes(ownCallsign, QByteArray(300'000, 'x')); // a line that never ends
    fsd().sendBytes(ownCallsign, QByteArrayLiteral("\r\n"));
    return settle() && leave();
}

bool Hour::flood(int count, const std::function<QString(int)> &line)
{
    for (int i = 0; i < count; ++i) {
        say(line(i));
        if ((i + 1) % linesAtOnce == 0 && !settle())
            return false;
    }
    return settle();
}

/// More of everything than there is room for.
bool Hour::floods()
{
    if (!connectAs(false) || !inventedStations() || !inventedSenders())
        return false;
    const int generation = ++m_generation;
    const auto pilot = [&](int i) {
        return QStringLiteral("@N:%1:2000:1:40.0:116.0:3000:250:4261561312:100").arg(callsignOf(generation, i));
    };
    if (!flood(floodSize, pilot))
        return false;
    if (client->manager->remoteAircraft().size() < floodSize)
        return fails(QStringLiteral("%1 of a flood of aircraft").arg(client->manager->remoteAircraft().size()));
    return flood(floodSize, [](int i) { return QStringLiteral("$ERSERVER:AB1:001:x:trouble %1").arg(i); }) && leave();
}

bool Hour::inventedStations()
{
    const int generation = ++m_generation;
    const auto station = [generation](int i) {
        return QStringLiteral("%Z%1X%2_TWR:%3:4:100:5:40.0:116.0:0").arg(generation).arg(i).arg(18000 + i);
    };
    if (!flood(floodSize, station))
        return false;
    const Footprint full = footprint();
    const Footprint bounds = Footprint::bounds();
    if (full.controllers != bounds.controllers || full.nearby != bounds.nearby)
        return fails(QStringLiteral("%1 and %2 invented stations").arg(full.controllers).arg(full.nearby));
    return true;
}

/// Private texts of ever new senders, of whom half have names as long as a line.
bool Hour::inventedSenders()
{
    const int generation = ++m_generation;
    const auto text = [generation](int i) {
        QString sender = QStringLiteral("W%1X%2").arg(generation).arg(i);
        if (i >= senderCount)
            sender = sender.leftJustified(longestSender, QLatin1Char('Y'));
        return QStringLiteral("#TM%1:AB1:%2").arg(sender, QString(200, QLatin1Char('x')));
    };
    const auto talk = [&text](int i) {
        switch (i % 3) {
        case 0:
            return text(i / 3);
        case 1:
            return QStringLiteral("#TMSERVER:AB1:notice %1").arg(i);
        default:
            return QStringLiteral("#TMTST1:*:to all");
        }
    };
    if (!flood(2 * senderCount * 3, talk))
        return false;
    const qsizetype sessions = footprint().sessions;
    return sessions == Footprint::bounds().sessions || fails(QStringLiteral("%1 private sessions").arg(sessions));
}

/// Each line in two pieces, cut at every tenth of it.
bool Hour::everyLineAndHalves(const QStringList &lines)
{
    for (const QString &line : lines) {
        const QByteArray bytes = line.toLatin1() + "\r\n";
        for (qsizetype cut = 2; cut + 1 < bytes.size(); cut += 10) {
            fsd().sendBytes(ownCallsign, bytes.left(cut));
            QCoreApplication::processEvents(); // so that mostly they are read one by one
            fsd().sendBytes(ownCallsign, bytes.mid(cut));
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
    for (int step = 1; step <= 20; ++step) {
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
    if (m_pages->plotAll() == 0)
        return fails(QStringLiteral("nothing is plotted of a crowd"));
    QStringList farewells;
    for (int pilot = 10; pilot < crowdSize; ++pilot)
        farewells += QStringLiteral("#DP%1:1002").arg(callsignOf(generation, pilot));
    if (!sayAll(farewells))
        return false;
    const auto gone = [this] {
        return client->manager->remoteAircraft().size() == 10 && client->traffic->aircraft().size() == 10;
    };
    return waitFor(gone, QStringLiteral("aircraft that left")) && leave();
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

/// Text goes out by the page and by the plugin, and comes in.
bool Hour::talks()
{
    return connectAs(false) && settle() && sayEverywhere() && pluginSpeaks() &&
           sayAll({QStringLiteral("#TMFOO:@18500:AB1, do you read"), QStringLiteral("#TMFOO:@18500:SELCAL EFGH"),
                   QStringLiteral("#TMFOO:AB1:in private")}) &&
           leave();
}

bool Hour::sayEverywhere()
{
    ui::MessagesPageViewModel &page = m_pages->messages;
    page.clearMessages();
    for (int i = 0; i < textCount; ++i) {
        page.sendRadioMessage(QStringLiteral("radio %1").arg(i));
        page.sendPrivateMessage(QStringLiteral("zbaa_twr"), QStringLiteral("private %1").arg(i));
        page.sendWallopMessage(QStringLiteral("wallop %1").arg(i));
    }
    if (!settle())
        return false;
    for (const char *line : {"#TMAB1:@18500:radio ", "#TMAB1:ZBAA_TWR:private ", "#TMAB1:*S:wallop "}) {
        if (network.linesOf(QLatin1StringView(line)).size() != textCount)
            return fails(QStringLiteral("texts ") + QLatin1StringView(line));
    }
    return page.messages().size() >= 3 * textCount || fails(QStringLiteral("sent texts on the page"));
}

bool Hour::pluginSpeaks()
{
    practice::PluginStandIn &plugin = network.practice.xplane().plugin();
    network.heard.clear();
    for (int i = 0; i < textCount; ++i)
        plugin.sendRadioMessage(QStringLiteral("cockpit %1").arg(i));
    plugin.sendPrivateMessage(QStringLiteral("zbaa_twr"), QStringLiteral("cockpit"));
    plugin.requestStation(QStringLiteral("zbaa_twr"));
    const auto carried = [this] {
        return network.linesOf(u"#TMAB1:@18500:cockpit"_qs).size() == textCount &&
               network.heard.contains(u"#TMAB1:ZBAA_TWR:cockpit"_qs) &&
               network.heard.contains(u"$CQAB1:ZBAA_TWR:ATIS"_qs);
    };
    return waitFor(carried, QStringLiteral("texts of the plugin"));
}

bool Hour::pluginDies()
{
    practice::PluginStandIn &plugin = network.practice.xplane().plugin();
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
        if (!pluginReturns(url))
            return false;
    }
    return leave();
}

/// The plugin is asked for its version again, and draws whoever comes. That X-Plane is there proves nothing: its own
/// data alone do. The question is lost now and then, when the pilot asks just as the plugin comes: he asks again.
bool Hour::pluginReturns(const QString &url)
{
    practice::PluginStandIn &plugin = network.practice.xplane().plugin();
    QStringList heard;
    const QObject context;
    QObject::connect(&plugin, &practice::PluginStandIn::messageReceived, &context,
                     [&heard](const QString &name) { heard << name; });
    if (!plugin.listen(url))
        return fails(QStringLiteral("no plugin address"));
    if (!waitFor([&] { return !heard.isEmpty(); }, QStringLiteral("nobody dials the plugin again")))
        return false;
    plugin.sendRaw(QByteArrayLiteral("\xc1 no message"));
    QDeadlineTimer patience(0);
    const auto isAsked = [&] {
        if (patience.hasExpired()) {
            client->manager->reconnectSimulator();
            patience.setRemainingTime(5000);
        }
        return heard.contains(u"VER"_qs);
    };
    if (!waitFor(isAsked, QStringLiteral("the plugin is not asked for its version")))
        return false;
    const QString callsign = callsignOf(++m_generation, 1);
    return awaitSimulator() && sayAll(arrivalOf(callsign)) &&
           waitFor([&] { return plugin.aircraft(callsign).callsign == callsign; },
                   QStringLiteral("an aircraft does not reach the plugin"));
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
        here->sendLine(ownCallsign, QStringLiteral("#TMSERVER:AB1:moving"));
        if (!here->handOver(ownCallsign, *there))
            return fails(QStringLiteral("hand-over"));
        here->sendBytes(ownCallsign, QByteArrayLiteral("^HALF:1:2")); // the old server's last words
        const auto moved = [&] { return there->callsigns().contains(ownCallsign) && here->connectionCount() == 0; };
        if (!waitFor(moved, QStringLiteral("server change %1").arg(i)))
            return false;
        std::swap(here, there);
        if (!settleAt(*here))
            return false;
    }
    here->redirect(ownCallsign, QStringLiteral("127.0.0.3")); // nobody is there
    return settleAt(*here) && leave();
}

} // namespace tarvo::test
