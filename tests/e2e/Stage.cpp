#include "e2e/Stage.h"

#include "e2e/Packed.h"
#include "e2e/TrafficLines.h"

#include <QCoreApplication>
#include <QDateTime>

#include <algorithm>

namespace tarvo::test {

using manager::NetworkManager;

namespace {

constexpr double momentOnTheStand = 7; ///< seconds of the flight: avionics on, engines off
constexpr auto com1 = "sim/cockpit2/radios/actuators/com1_frequency_hz_833";
constexpr auto com2 = "sim/cockpit2/radios/actuators/com2_frequency_hz_833";
constexpr auto com2Receives = "sim/cockpit2/radios/actuators/audio_selection_com2";

bool isOwnPosition(const QString &line)
{
    return line.startsWith(u'@') || line.startsWith(u'^') || line.startsWith(u'%') ||
           line.startsWith(QLatin1StringView("#ST")) || line.startsWith(QLatin1StringView("#SL"));
}

QString words(const QString &value)
{
    return value;
}
QString words(const QStringList &value)
{
    return value.join(u'|');
}
QString words(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}
QString words(quint32 value)
{
    return QString::number(value);
}
QString words(double value)
{
    return QString::number(value);
}
QString words(const QList<uint> &value)
{
    QStringList numbers;
    for (const uint number : value)
        numbers << QString::number(number);
    return numbers.join(u'&');
}
QString words(const network::RadioMessageReceived &value)
{
    QStringList all{value.from, value.message, words(value.frequencies.value<QList<uint>>())};
    if (value.direct)
        all << QStringLiteral("direct");
    if (value.dualReceive)
        all << QStringLiteral("dual");
    return all.join(u' ');
}

} // namespace

Stage::Stage(Protocol protocol, const practice::PracticeSettings &settings)
    : simulatorClock(QDateTime::currentMSecsSinceEpoch()),
      network(simulatorClock, settings),
      client(network, protocol, clock)
{
}

bool Stage::open()
{
    if (!network.started || !client.signIn())
        return false;
    watchPlugin();
    watchRadio();
    watchTextSignals();
    watchTrafficSignals();
    watchStationSignals();
    return activateXPlane();
}

/// The aeroplane rocks on its stand until the client takes it for alive; then it stands still.
bool Stage::activateXPlane()
{
    int moment = 0;
    const bool connected = client.activateXPlane([&] {
        moment = 1 - moment;
        xplane().setFlightTime(momentOnTheStand + moment);
        simulatorClock.advance(1000);
        xplane().tick();
    });
    xplane().setFlightTime(momentOnTheStand);
    xplane().setPaused(true);
    return connected;
}

bool Stage::replaceSimulator()
{
    xplane().setPaused(false);
    return activateXPlane();
}

bool Stage::goOnline()
{
    m_callsign = QStringLiteral("AB1");
    client.events.clear();
    return client.connectPilot() && awaitLogin();
}

bool Stage::goOnlineAsObserver(const QString &callsign)
{
    m_callsign = callsign;
    client.events.clear();
    return manager().connectToNetwork(callsign, {}, {}, true) && awaitLogin();
}

bool Stage::awaitLogin()
{
    const auto loggedIn = [this] {
        return !client.events.isEmpty() && !network.linesOf(QStringLiteral("$ID") + m_callsign).isEmpty();
    };
    if (!waitFor(loggedIn))
        return false;
    stopTimers();
    return settle();
}

void Stage::stopTimers()
{
    for (const char *timer : {"slowTimer", "fastTimer", "staleTimer", "controllerTimer", "configurationBudgetTimer"})
        client.stop(timer);
}

bool Stage::start(const QStringList &pilots, const QStringList &controllers)
{
    for (const QString &callsign : pilots)
        network.practice.scriptedClients().join(callsign, QStringLiteral("2001"), QStringLiteral("Other Pilot"), false);
    for (const QString &callsign : controllers)
        network.practice.scriptedClients().join(callsign, QStringLiteral("3001"), QStringLiteral("Controller"), true);
    const bool online = open() && goOnline();
    takeLines();
    takeMessages();
    takeSignals();
    client.notifications.clear();
    return online;
}

// --- waiting ---

bool Stage::hear(const QStringList &lines)
{
    const bool sent = std::all_of(lines.begin(), lines.end(),
                                  [this](const QString &line) { return server().sendLine(m_callsign, line); });
    return sent && settle();
}

bool Stage::introduce(const QString &callsign, int knots)
{
    const bool introduced = hear({slowPosition(callsign, knots), planeInfo(callsign)});
    takeLines();
    takeMessages();
    return introduced;
}

bool Stage::settle()
{
    constexpr int mostRounds = 50; // an exchange that never ends is a failure
    for (int round = 0; round < mostRounds; ++round) {
        const auto before = std::pair(network.heard.size(), m_messages.size());
        if (!passRound())
            return false;
        if (before == std::pair(network.heard.size(), m_messages.size()))
            return true;
    }
    return false;
}

/// A mark goes from the server through the client to the plugin, and back the same way. Each leg keeps the order of
/// what goes along it, so that all that was on its way before has arrived when the mark has.
bool Stage::passRound()
{
    const QString mark = nextMark();
    const auto isMarked = [mark](const QString &said) { return said.contains(mark); };
    const auto anyMarked = [&] { return std::any_of(network.heard.begin(), network.heard.end(), isMarked); };
    const bool passed = server().sendText(m_callsign, mark) && waitFor([&] { return markedMessages(mark) == 1; }) &&
                        plugin().sendPrivateMessage(QStringLiteral("SERVER"), mark) && waitFor(anyMarked) &&
                        waitFor([&] { return markedMessages(mark) == 2; });
    forgetMark(mark);
    return passed;
}

/// The mark of the plugin's own end: the client repeats what was typed there.
bool Stage::settlePlugin()
{
    const QString mark = nextMark();
    const bool passed = plugin().sendPrivateMessage(QStringLiteral("SERVER"), mark) &&
                        waitFor([&] { return markedMessages(mark) == 1; });
    forgetMark(mark);
    return passed;
}

QString Stage::nextMark()
{
    return QStringLiteral("~mark %1~").arg(++m_mark);
}

qsizetype Stage::markedMessages(const QString &mark) const
{
    return std::count_if(m_messages.begin(), m_messages.end(),
                         [mark](const QByteArray &said) { return said.contains(mark.toLatin1()); });
}

void Stage::forgetMark(const QString &mark)
{
    const auto isMarked = [mark](const QString &said) { return said.contains(mark); };
    network.heard.removeIf(isMarked);
    m_messages.removeIf([mark](const QByteArray &said) { return said.contains(mark.toLatin1()); });
    m_signals.removeIf(isMarked);
}

// --- what was said ---

QStringList Stage::takeLines()
{
    QStringList taken;
    taken.swap(network.heard);
    taken.removeIf(isOwnPosition);
    return taken;
}

QStringList Stage::takeMessages()
{
    QStringList taken;
    for (const QByteArray &message : std::as_const(m_messages))
        taken << shown(message);
    m_messages.clear();
    return taken;
}

QStringList Stage::takeSignals()
{
    QStringList taken;
    taken.swap(m_signals);
    return taken;
}

void Stage::watchPlugin()
{
    QObject::connect(&plugin(), &practice::PluginStandIn::bytesReceived, &plugin(),
                     [this](const QByteArray &bytes) { m_messages << bytes; });
}

void Stage::watchRadio()
{
    QObject::connect(&manager(), &NetworkManager::radioStatesUpdate, &manager(),
                     [this](const model::RadioStackState &state) { m_radio = state; });
}

template <class... Arguments>
void Stage::watch(void (NetworkManager::*signal)(Arguments...), const QString &name)
{
    QObject::connect(&manager(), signal, &manager(), [this, name](const Arguments &...arguments) {
        m_signals << QStringList{name, words(arguments)...}.join(u' ');
    });
}

void Stage::watchTextSignals()
{
    watch<const QString &>(&NetworkManager::serverMessageReceived, u"server"_qs);
    watch<const QString &, const QString &>(&NetworkManager::privateMessageReceived, u"private"_qs);
    watch<const QString &, const QString &>(&NetworkManager::privateMessageSent, u"private sent"_qs);
    watch<const QString &, const QString &>(&NetworkManager::broadcastMessageReceived, u"broadcast"_qs);
    watch<const QString &, const QList<uint> &>(&NetworkManager::radioMessageSent, u"radio sent"_qs);
    watch<const QString &>(&NetworkManager::wallopSent, u"wallop sent"_qs);
    watch<const network::RadioMessageReceived &>(&NetworkManager::radioMessageReceived, u"radio"_qs);
    watch<const QString &, const QList<uint> &>(&NetworkManager::selcalAlertReceived, u"selcal"_qs);
    watch<bool>(&NetworkManager::muteReceived, u"mute"_qs);
}

void Stage::watchTrafficSignals()
{
    watch<const QString &>(&NetworkManager::pilotDeleted, u"pilot deleted"_qs);
    watch<>(&NetworkManager::disableVoiceTransmit, u"voice off"_qs);
    watch<const QString &, const QString &>(&NetworkManager::aircraftConfigurationInfoReceived, u"configuration"_qs);
    watch<const QString &>(&NetworkManager::capabilitiesRequestReceived, u"capabilities asked"_qs);
    watch<const QString &, const QString &>(&NetworkManager::capabilitiesResponseReceived, u"capabilities"_qs);
    watch<const QString &, const QString &, const QString &>(&NetworkManager::aircraftInfoReceived, u"aircraft"_qs);
}

void Stage::watchStationSignals()
{
    watch<const QString &>(&NetworkManager::controllerDeleted, u"controller deleted"_qs);
    watch<const QString &, quint32, double, double>(&NetworkManager::controllerUpdateReceived, u"controller"_qs);
    watch<const QString &>(&NetworkManager::isValidAtcReceived, u"valid"_qs);
    watch<const QString &, const QString &>(&NetworkManager::realNameReceived, u"name"_qs);
    watch<const QString &, const QStringList &>(&NetworkManager::controllerAtisReceived, u"atis"_qs);
}

QStringList told(std::initializer_list<practice::PluginMessage> messages)
{
    QStringList list;
    for (const practice::PluginMessage &message : messages)
        list << shown(packed(message.name, message.arguments));
    return list;
}

// --- the simulator ---

bool Stage::turn(const QString &dataref, float value, const std::function<bool()> &known)
{
    const auto ticks = [&] {
        simulatorClock.advance(1000);
        xplane().tick();
        return known();
    };
    return xplane().setValue(dataref, value) && waitFor(ticks);
}

bool Stage::turnRadio(const QString &dataref, float value,
                      const std::function<bool(const model::RadioStackState &)> &known)
{
    return turn(dataref, value, [&] { return known(m_radio); });
}

bool Stage::tuneCom1(int kHz)
{
    return turnRadio(QLatin1StringView(com1), static_cast<float>(kHz), [kHz](const model::RadioStackState &radio) {
        return radio.com1Frequency == static_cast<quint32>(kHz);
    });
}

bool Stage::tuneCom2(int kHz)
{
    return turnRadio(QLatin1StringView(com2), static_cast<float>(kHz), [kHz](const model::RadioStackState &radio) {
        return radio.com2Frequency == static_cast<quint32>(kHz);
    });
}

bool Stage::receiveOnCom2()
{
    return turnRadio(QLatin1StringView(com2Receives), 1,
                     [](const model::RadioStackState &radio) { return radio.com2ReceiveEnabled; });
}

// --- the records ---

model::RemoteAircraft Stage::inNetworkTable(const QString &callsign) const
{
    return client.manager->remoteAircraft(callsign).value_or(model::RemoteAircraft());
}

model::RemoteAircraft Stage::inTrafficList(const QString &callsign) const
{
    for (const model::RemoteAircraft &aircraft : client.traffic->aircraft()) {
        if (aircraft.callsign == callsign)
            return aircraft;
    }
    return {};
}

} // namespace tarvo::test
