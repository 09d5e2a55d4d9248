#include "practice/control/Controls.h"

#include "practice/PracticeNetwork.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>
#include <limits>
#include <optional>

namespace tarvo::practice {

namespace {
constexpr qint64 longestDelay = 3'600'000;    // milliseconds
constexpr qint64 longestLife = 1'000'000'000; // seconds
using Int = std::numeric_limits<int>;

QString text(const ControlArguments &arguments, QLatin1StringView name)
{
    return arguments.value(name);
}

QString callsign(const ControlArguments &arguments)
{
    return text(arguments, QLatin1StringView("callsign")).toUpper();
}

/// The whole number that the argument is, from `least` to `most`; nothing for anything else.
std::optional<qint64> whole(const ControlArguments &arguments, QLatin1StringView name, qint64 least, qint64 most)
{
    bool ok = false;
    const qint64 value = text(arguments, name).toLongLong(&ok);
    return ok && value >= least && value <= most ? std::optional(value) : std::nullopt;
}

/// The finite number that the argument is; nothing for anything else.
std::optional<double> number(const ControlArguments &arguments, QLatin1StringView name)
{
    bool ok = false;
    const double value = text(arguments, name).toDouble(&ok);
    return ok && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// "on=1" or "on=true"; without the argument it is on.
bool isOn(const ControlArguments &arguments)
{
    const QString value = text(arguments, QLatin1StringView("on"));
    return value.isEmpty() || value == QLatin1StringView("1") || value == QLatin1StringView("true");
}

/// How the plugin is to answer: "mode" is "answer", "late" by "delay" milliseconds, or "silent". Nothing for anything
/// else.
std::optional<PluginAnswering> answering(const ControlArguments &arguments)
{
    const QString mode = text(arguments, QLatin1StringView("mode"));
    if (mode == QLatin1StringView("answer"))
        return PluginAnswering{};
    if (mode == QLatin1StringView("silent"))
        return PluginAnswering{.silent = true};
    const auto delay = whole(arguments, QLatin1StringView("delay"), 1, longestDelay);
    return mode == QLatin1StringView("late") && delay
               ? std::optional(PluginAnswering{.delayMs = static_cast<int>(*delay)})
               : std::nullopt;
}

/// Nothing for anything but a share of 100, which is 0 without the argument.
std::optional<double> percent(const ControlArguments &arguments, QLatin1StringView name)
{
    const auto value = text(arguments, name).isEmpty() ? std::optional(0.0) : number(arguments, name);
    return value && *value >= 0 && *value <= 100 ? value : std::nullopt;
}

/// "loss" and "duplicate" in per cent, "jitter" in ms; 0 for what is left out. Nothing for anything else.
std::optional<WeatherSettings> weather(const ControlArguments &arguments)
{
    constexpr qint64 longestJitter = 10'000;
    const auto loss = percent(arguments, QLatin1StringView("loss"));
    const auto duplicate = percent(arguments, QLatin1StringView("duplicate"));
    const auto jitter = text(arguments, QLatin1StringView("jitter")).isEmpty()
                            ? std::optional<qint64>(0)
                            : whole(arguments, QLatin1StringView("jitter"), 0, longestJitter);
    if (!loss || !duplicate || !jitter)
        return std::nullopt;
    return WeatherSettings{.lossPercent = *loss, .jitterMs = static_cast<int>(*jitter), .duplicatePercent = *duplicate};
}

/// The JSON array that the argument is; empty without one, nothing for anything else.
std::optional<QVariantList> json(const ControlArguments &arguments, QLatin1StringView name)
{
    const QString value = text(arguments, name);
    const QJsonDocument document = QJsonDocument::fromJson(value.toUtf8());
    if (!value.isEmpty() && !document.isArray())
        return std::nullopt;
    return document.array().toVariantList();
}

/// The bytes that the argument tells in hexadecimal digits; nothing for anything else.
std::optional<QByteArray> bytes(const ControlArguments &arguments, QLatin1StringView name)
{
    const QByteArray digits = text(arguments, name).toLatin1().toLower();
    const QByteArray value = QByteArray::fromHex(digits);
    return value.toHex() == digits ? std::optional(value) : std::nullopt;
}
} // namespace

Controls::Controls(PracticeNetwork &network) : m_network(network)
{
    addClientVerbs();
    addReplayVerb();
    addScriptedClientVerbs();
    addLoginVerbs();
    addSimulatorVerbs();
    addPluginVerbs();
    addSayVerbs();
    addVoiceVerbs();
    addVoiceLineVerbs();
}

bool Controls::perform(const QString &verb, const ControlArguments &arguments) const
{
    const Action action = m_actions.value(verb);
    return action && action(arguments);
}

QStringList Controls::verbs() const
{
    QStringList list = m_actions.keys();
    list.sort();
    return list;
}

void Controls::addClientVerbs()
{
    FsdServer &fsd = m_network.fsd();
    using A = const ControlArguments &;
    m_actions[QStringLiteral("kill")] = [&fsd](A a) {
        return fsd.kill(callsign(a), text(a, QLatin1StringView("reason")));
    };
    m_actions[QStringLiteral("drop")] = [&fsd](A a) { return fsd.dropClient(callsign(a)); };
    m_actions[QStringLiteral("redirect")] = [&fsd](A a) {
        return fsd.redirect(callsign(a), text(a, QLatin1StringView("to")));
    };
    m_actions[QStringLiteral("hand-over")] = [this](A a) {
        return m_network.secondFsd() && m_network.fsd().handOver(callsign(a), *m_network.secondFsd());
    };
    m_actions[QStringLiteral("text")] = [&fsd](A a) {
        return fsd.sendText(callsign(a), text(a, QLatin1StringView("text")));
    };
    m_actions[QStringLiteral("error")] = [&fsd](A a) {
        const auto type = whole(a, QLatin1StringView("type"), Int::min(), Int::max());
        return type && fsd.sendError(callsign(a), static_cast<int>(*type), text(a, QLatin1StringView("parameter")),
                                     text(a, QLatin1StringView("message")));
    };
    m_actions[QStringLiteral("fast")] = [&fsd](A a) { return fsd.setFast(callsign(a), isOn(a)); };
    m_actions[QStringLiteral("ping")] = [&fsd](A a) { return fsd.ping(callsign(a)); };
    m_actions[QStringLiteral("challenge")] = [&fsd](A a) { return fsd.challenge(callsign(a)); };
    m_actions[QStringLiteral("line")] = [&fsd](A a) {
        return fsd.sendLine(callsign(a), text(a, QLatin1StringView("line")));
    };
}

void Controls::addReplayVerb()
{
    m_actions[QStringLiteral("step")] = [this](const ControlArguments &a) {
        const auto lines = text(a, QLatin1StringView("lines")).isEmpty()
                               ? std::optional<qint64>(1)
                               : whole(a, QLatin1StringView("lines"), 1, Int::max());
        return lines && m_network.replay() && m_network.replay()->step(static_cast<int>(*lines));
    };
}

void Controls::addScriptedClientVerbs()
{
    ScriptedClients &clients = m_network.scriptedClients();
    using A = const ControlArguments &;
    m_actions[QStringLiteral("join")] = [&clients](A a) {
        const QString as = text(a, QLatin1StringView("as"));
        const bool controller = as == QLatin1StringView("controller");
        if (!controller && !as.isEmpty() && as != QLatin1StringView("pilot"))
            return false;
        return clients.join(callsign(a), a.value(QStringLiteral("cid"), QStringLiteral("1002")),
                            a.value(QStringLiteral("name"), QStringLiteral("Scripted")), controller);
    };
    m_actions[QStringLiteral("leave")] = [&clients](A a) { return clients.leave(callsign(a)); };
    m_actions[QStringLiteral("speak")] = [&clients](A a) {
        return clients.speak(callsign(a), text(a, QLatin1StringView("line")));
    };
}

void Controls::addLoginVerbs()
{
    using A = const ControlArguments &;
    m_actions[QStringLiteral("reject-tokens")] = [this](A a) {
        m_network.fsd().setRejectTokens(isOn(a));
        return true;
    };
    m_actions[QStringLiteral("reject-logins")] = [this](A a) {
        m_network.fsd().setRejectLogins(isOn(a));
        return true;
    };
    m_actions[QStringLiteral("database-error")] = [this](A a) {
        m_network.account().setDatabaseError(isOn(a));
        return true;
    };
    m_actions[QStringLiteral("fsd-token-error")] = [this](A a) {
        m_network.account().setFsdTokenError(text(a, QLatin1StringView("text")));
        return true;
    };
    m_actions[QStringLiteral("bare-status")] = [this](A a) {
        const auto status = whole(a, QLatin1StringView("status"), 0, 599);
        if (!status || (*status != 0 && *status < 100))
            return false;
        m_network.account().setBareStatus(static_cast<int>(*status));
        return true;
    };
    m_actions[QStringLiteral("token-life")] = [this](A a) {
        const auto seconds = whole(a, QLatin1StringView("seconds"), -longestLife, longestLife);
        if (seconds)
            m_network.tokens().setLife(TokenUse::Access, *seconds);
        return seconds.has_value();
    };
    m_actions[QStringLiteral("revoke-tokens")] = [this](A) {
        m_network.tokens().revokeAll();
        return true;
    };
}

void Controls::addSimulatorVerbs()
{
    XPlaneStandIn &xplane = m_network.xplane();
    using A = const ControlArguments &;
    m_actions[QStringLiteral("pause")] = [&xplane](A a) {
        xplane.setPaused(isOn(a));
        return true;
    };
    m_actions[QStringLiteral("freeze")] = [&xplane](A a) {
        xplane.setFrozen(isOn(a));
        return true;
    };
    m_actions[QStringLiteral("flight")] = [this](A a) { return jump(a); };
    m_actions[QStringLiteral("dataref")] = [&xplane](A a) {
        const auto value = number(a, QLatin1StringView("value"));
        return value && std::abs(*value) <= std::numeric_limits<float>::max() &&
               xplane.setValue(text(a, QLatin1StringView("name")), static_cast<float>(*value));
    };
    m_actions[QStringLiteral("tune")] = [&xplane](A a) {
        constexpr qint64 lowest = 118'000; // kHz, as is the other
        constexpr qint64 highest = 136'990;
        const auto com = text(a, QLatin1StringView("com")).isEmpty() ? std::optional<qint64>(1)
                                                                     : whole(a, QLatin1StringView("com"), 1, 2);
        const auto frequency = whole(a, QLatin1StringView("frequency"), lowest, highest);
        const QString dataref = QStringLiteral("sim/cockpit2/radios/actuators/com%1_frequency_hz_833");
        return com && frequency && xplane.setValue(dataref.arg(*com), static_cast<float>(*frequency));
    };
    m_actions[QStringLiteral("command")] = [&xplane](A a) {
        return xplane.command(text(a, QLatin1StringView("name")));
    };
}

void Controls::addPluginVerbs()
{
    PluginStandIn &plugin = m_network.xplane().plugin();
    using A = const ControlArguments &;
    m_actions[QStringLiteral("plugin-version")] = [&plugin](A a) {
        const auto version = whole(a, QLatin1StringView("version"), -1, std::numeric_limits<qint64>::max());
        if (version)
            plugin.setVersion(*version);
        return version.has_value();
    };
    m_actions[QStringLiteral("plugin-csl")] = [&plugin](A a) {
        plugin.setCslValid(isOn(a));
        return true;
    };
    m_actions[QStringLiteral("plugin-mute")] = [&plugin](A a) {
        plugin.setMute(isOn(a));
        return true;
    };
    m_actions[QStringLiteral("plugin-add")] = [&plugin](A a) {
        const auto how = answering(a);
        if (how)
            plugin.setAddAnswering(*how);
        return how.has_value();
    };
    m_actions[QStringLiteral("plugin-del")] = [&plugin](A a) {
        const auto how = answering(a);
        if (how)
            plugin.setDelAnswering(*how);
        return how.has_value();
    };
    m_actions[QStringLiteral("plugin-vanish")] = [&plugin](A) { return plugin.vanish(); };
    m_actions[QStringLiteral("plugin-return")] = [&plugin](A) { return plugin.comeBack(); };
    m_actions[QStringLiteral("plugin-message")] = [&plugin](A a) {
        const auto list = json(a, QLatin1StringView("arguments"));
        return list && plugin.send(text(a, QLatin1StringView("name")), *list);
    };
    m_actions[QStringLiteral("plugin-bytes")] = [&plugin](A a) {
        const auto sent = bytes(a, QLatin1StringView("hex"));
        return sent && plugin.sendRaw(*sent);
    };
}

void Controls::addSayVerbs()
{
    PluginStandIn &plugin = m_network.xplane().plugin();
    using A = const ControlArguments &;
    m_actions[QStringLiteral("say-radio")] = [&plugin](A a) {
        return plugin.sendRadioMessage(text(a, QLatin1StringView("text")));
    };
    m_actions[QStringLiteral("say-private")] = [&plugin](A a) {
        return plugin.sendPrivateMessage(text(a, QLatin1StringView("to")), text(a, QLatin1StringView("text")));
    };
    m_actions[QStringLiteral("request-station")] = [&plugin](A a) { return plugin.requestStation(callsign(a)); };
    m_actions[QStringLiteral("force-disconnect")] = [&plugin](A a) {
        return plugin.forceDisconnect(text(a, QLatin1StringView("reason")));
    };
    m_actions[QStringLiteral("shut-down")] = [&plugin](A) { return plugin.shutDown(); };
}

void Controls::addVoiceVerbs()
{
    using A = const ControlArguments &;
    m_actions[QStringLiteral("voice-speak")] = [this](A a) {
        QStringList callsigns{text(a, QLatin1StringView("as"))};
        if (a.contains(QStringLiteral("and")))
            callsigns.append(text(a, QLatin1StringView("and")));
        const auto frequency = whole(a, QLatin1StringView("frequency"), 0, Int::max());
        return frequency &&
               m_network.voicePeople().speak(callsigns, static_cast<int>(*frequency),
                                             a.value(QStringLiteral("phrase"), QStringLiteral("pilot-call")));
    };
    m_actions[QStringLiteral("voice-mute")] = [this](A a) {
        m_network.voice().setMute(isOn(a));
        return true;
    };
    m_actions[QStringLiteral("voice-weather")] = [this](A a) {
        const auto changed = weather(a);
        if (changed)
            m_network.voice().setWeather(*changed);
        return changed.has_value();
    };
    m_actions[QStringLiteral("voice-garbage")] = [this](A a) {
        constexpr qint64 most = 10'000;
        const auto count = whole(a, QLatin1StringView("count"), 1, most);
        return count && m_network.voice().sendGarbage(callsign(a), static_cast<int>(*count));
    };
}

void Controls::addVoiceLineVerbs()
{
    VoiceServer &voice = m_network.voice();
    using A = const ControlArguments &;
    m_actions[QStringLiteral("voice-error")] = [&voice](A a) {
        return voice.sendError(callsign(a), text(a, QLatin1StringView("text")));
    };
    m_actions[QStringLiteral("voice-disconnect")] = [&voice](A a) { return voice.sendDisconnect(callsign(a)); };
    m_actions[QStringLiteral("voice-line")] = [&voice](A a) {
        return voice.sendLine(callsign(a), text(a, QLatin1StringView("line")));
    };
    m_actions[QStringLiteral("voice-half")] = [&voice](A a) {
        return voice.sendBytes(callsign(a), text(a, QLatin1StringView("line")).toUtf8());
    };
    m_actions[QStringLiteral("voice-drop")] = [&voice](A a) { return voice.drop(callsign(a)); };
}

bool Controls::jump(const ControlArguments &arguments)
{
    XPlaneStandIn &xplane = m_network.xplane();
    const QString phase = text(arguments, QLatin1StringView("phase"));
    const auto time =
        phase.isEmpty() ? number(arguments, QLatin1StringView("time")) : std::optional(xplane.flight().startOf(phase));
    if (!time || *time < 0)
        return false;
    xplane.setFlightTime(*time);
    return true;
}

} // namespace tarvo::practice
