#include "practice/Console.h"

#include "practice/PracticeNetwork.h"
#include "practice/control/ScriptPlayer.h"
#include "practice/fsd/LineMask.h"

#include <QTime>

namespace tarvo::practice {

namespace {
constexpr int burstMs = 100; // a client asks for all its datarefs well within that

QString printable(QString text)
{
    for (QChar &c : text) {
        if (!c.isPrint())
            c = u'?';
    }
    return text;
}

QString messageText(const QString &name, const QVariantList &arguments)
{
    return PluginMessage{name, arguments}.toText().left(400);
}
} // namespace

Console::Console(QTextStream &out, QObject *parent) : QObject(parent), m_out(out)
{
    m_burst.setSingleShot(true);
    m_burst.setInterval(burstMs);
    connect(&m_burst, &QTimer::timeout, this, &Console::saySubscriptions);
}

void Console::say(const QString &area, const QString &text)
{
    m_out << QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz")) << ' ' << area.leftJustified(7) << ' '
          << printable(text) << '\n';
    m_out.flush();
}

void Console::announce(PracticeNetwork &network)
{
    const auto place = [](const auto &server) {
        return QStringLiteral("%1:%2").arg(server.address().toString()).arg(server.port());
    };
    say(QStringLiteral("account"), QStringLiteral("serving %1, user 1001, password practice; see %2")
                                       .arg(network.account().baseUrl(), network.account().registerUrl()));
    if (network.replay())
        say(QStringLiteral("fsd"), QStringLiteral("serving %1, a replay").arg(place(*network.replay())));
    else
        say(QStringLiteral("fsd"), QStringLiteral("serving %1").arg(place(network.fsd())));
    if (network.secondFsd())
        say(QStringLiteral("fsd2"), QStringLiteral("serving %1").arg(place(*network.secondFsd())));
    say(QStringLiteral("voice"), QStringLiteral("serving %1:%2, UDP port %3")
                                     .arg(network.voice().address().toString())
                                     .arg(network.voice().tcpPort())
                                     .arg(network.voice().udpPort()));
    if (network.pluginUrl().isEmpty())
        return;
    say(QStringLiteral("xplane"),
        QStringLiteral("serving UDP port %1, plugin at %2").arg(network.xplane().udpPort()).arg(network.pluginUrl()));
}

void Console::follow(PracticeNetwork &network)
{
    connect(&network.account(), &AccountService::requestAnswered, this,
            [this](const QString &method, const QString &path, int status) {
                say(QStringLiteral("account"), QStringLiteral("%1 %2 -> %3").arg(method, path).arg(status));
            });
    followFsd(QStringLiteral("fsd"), network.fsd());
    if (network.replay())
        followReplay(*network.replay());
    if (network.secondFsd())
        followFsd(QStringLiteral("fsd2"), *network.secondFsd());
    followVoice(network.voice());
    followVoices(network.voicePeople());
    followXPlane(network.xplane());
}

void Console::follow(const ScriptPlayer &player)
{
    const QString area = QStringLiteral("script");
    connect(&player, &ScriptPlayer::played, this, [this, area](const QString &text) { say(area, text); });
    connect(&player, &ScriptPlayer::finished, this, [this, area] { say(area, QStringLiteral("is over")); });
    connect(&player, &ScriptPlayer::failed, this, [this, area](const QString &error) { say(area, error); });
}

void Console::followFsd(const QString &area, FsdServer &server)
{
    connect(&server, &FsdServer::lineReceived, this, [this, area](const QString &client, const QString &line) {
        say(area, QStringLiteral("%1 <<< %2").arg(client, maskSecrets(line)));
    });
    connect(&server, &FsdServer::lineSent, this, [this, area](const QString &client, const QString &line) {
        say(area, QStringLiteral("%1 >>> %2").arg(client, maskSecrets(line)));
    });
    connect(&server, &FsdServer::clientConnected, this,
            [this, area](const QString &client) { say(area, QStringLiteral("%1 connected").arg(client)); });
    connect(&server, &FsdServer::clientLoggedIn, this, [this, area](const QString &callsign, bool observer) {
        say(area, QStringLiteral("%1 logged in as %2")
                      .arg(callsign, observer ? QStringLiteral("observer") : QStringLiteral("pilot")));
    });
    connect(&server, &FsdServer::clientRefused, this, [this, area](const QString &client, const QString &reason) {
        say(area, QStringLiteral("%1 sent away: %2").arg(client, reason));
    });
    connect(&server, &FsdServer::clientLeft, this,
            [this, area](const QString &client) { say(area, QStringLiteral("%1 left").arg(client)); });
}

void Console::followReplay(const ReplayServer &server)
{
    const QString area = QStringLiteral("replay");
    connect(&server, &ReplayServer::clientConnected, this,
            [this, area](const QString &client) { say(area, QStringLiteral("%1 connected").arg(client)); });
    connect(&server, &ReplayServer::clientLoggedIn, this,
            [this, area](const QString &callsign) { say(area, QStringLiteral("%1 logged in").arg(callsign)); });
    connect(&server, &ReplayServer::lineSent, this, [this, area](const QString &client, const QString &line) {
        say(area, QStringLiteral("%1 >>> %2").arg(client, maskSecrets(line)));
    });
    connect(&server, &ReplayServer::finished, this,
            [this, area](const QString &client) { say(area, QStringLiteral("%1 has been told all").arg(client)); });
}

void Console::followVoice(VoiceServer &server)
{
    const QString area = QStringLiteral("voice");
    connect(&server, &VoiceServer::lineReceived, this, [this, area](const QString &client, const QString &line) {
        say(area, QStringLiteral("%1 <<< %2").arg(client, line));
    });
    connect(&server, &VoiceServer::lineSent, this, [this, area](const QString &client, const QString &line) {
        say(area, QStringLiteral("%1 >>> %2").arg(client, line));
    });
    connect(&server, &VoiceServer::clientConnected, this,
            [this, area](const QString &client) { say(area, QStringLiteral("%1 connected").arg(client)); });
    connect(&server, &VoiceServer::clientRefused, this, [this, area](const QString &client, const QString &reason) {
        say(area, QStringLiteral("%1 sent away: %2").arg(client, reason));
    });
    connect(&server, &VoiceServer::clientLeft, this,
            [this, area](const QString &client) { say(area, QStringLiteral("%1 left").arg(client)); });
}

void Console::followVoices(VoicePeople &people)
{
    const QString area = QStringLiteral("voice");
    const auto megahertz = [](int frequency) { return QString::number(frequency / 1000.0, 'f', 3); };
    connect(&people, &VoicePeople::began, this, [this, area, megahertz](const QString &callsign, int frequency) {
        say(area, QStringLiteral("%1 speaks on %2").arg(callsign, megahertz(frequency)));
    });
    connect(&people, &VoicePeople::ended, this, [this, area, megahertz](const QString &callsign, int frequency) {
        say(area, QStringLiteral("%1 has spoken on %2").arg(callsign, megahertz(frequency)));
    });
}

void Console::countSubscription(const QString &client, int ratePerSecond)
{
    const QString verb = ratePerSecond > 0 ? QStringLiteral("subscribes") : QStringLiteral("unsubscribes");
    ++m_subscriptions[QStringLiteral("%1 %2").arg(client, verb)];
    if (!m_burst.isActive())
        m_burst.start();
}

void Console::saySubscriptions()
{
    for (auto it = m_subscriptions.cbegin(); it != m_subscriptions.cend(); ++it) {
        const QString what = it.value() == 1 ? QStringLiteral("dataref") : QStringLiteral("datarefs");
        say(QStringLiteral("xplane"), QStringLiteral("%1 %2 %3").arg(it.key()).arg(it.value()).arg(what));
    }
    m_subscriptions.clear();
}

void Console::followXPlane(XPlaneStandIn &xplane)
{
    const QString area = QStringLiteral("xplane");
    connect(&xplane, &XPlaneStandIn::phaseChanged, this, [this, area](const QString &phase) { say(area, phase); });
    connect(&xplane, &XPlaneStandIn::subscribed, this,
            [this](const QString &client, const QString &, int rate) { countSubscription(client, rate); });
    connect(&xplane, &XPlaneStandIn::written, this, [this, area](const QString &dataref, float value) {
        say(area, QStringLiteral("write %1 = %2").arg(dataref).arg(static_cast<double>(value), 0, 'g', 9));
    });
    connect(&xplane, &XPlaneStandIn::commanded, this,
            [this, area](const QString &command) { say(area, QStringLiteral("command %1").arg(command)); });
    connect(&xplane, &XPlaneStandIn::refused, this, [this, area](const QString &client, const QString &reason) {
        say(area, QStringLiteral("%1 refused: %2").arg(client, reason));
    });
    const QString plugin = QStringLiteral("plugin");
    connect(&xplane.plugin(), &PluginStandIn::messageReceived, this,
            [this, plugin](const QString &name, const QVariantList &arguments) {
                say(plugin, QStringLiteral("<<< %1").arg(messageText(name, arguments)));
            });
    connect(&xplane.plugin(), &PluginStandIn::messageSent, this,
            [this, plugin](const QString &name, const QVariantList &arguments) {
                say(plugin, QStringLiteral(">>> %1").arg(messageText(name, arguments)));
            });
    connect(&xplane.plugin(), &PluginStandIn::malformed, this,
            [this, plugin](const QString &reason) { say(plugin, QStringLiteral("refused: %1").arg(reason)); });
}

} // namespace tarvo::practice
