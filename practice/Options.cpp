#include "practice/Options.h"

#include <QCommandLineParser>

#include <cmath>

namespace tarvo::practice {

namespace {
/// An option with a value.
struct ValueOption
{
    const char *name;
    const char *description;
    const char *valueName;
    const char *defaultValue;
};

constexpr ValueOption valueOptions[] = {
    {"address", "Loopback address to listen on.", "address", "127.0.0.1"},
    {"second-address", "Another loopback address, for a second FSD server on the same port.", "address", ""},
    {"http-port", "TCP port of the account service.", "port", "8080"},
    {"fsd-port", "TCP port of the FSD server.", "port", "6809"},
    {"xplane-port", "UDP port of X-Plane.", "port", "49000"},
    {"voice-port", "TCP port of the voice server.", "port", "6808"},
    {"voice-udp-port", "UDP port of the voice server.", "port", "6807"},
    {"voice-loss", "Per cent of the voice server's datagrams that are lost.", "percent", "0"},
    {"voice-jitter", "Milliseconds by which each of them is late, at most.", "milliseconds", "0"},
    {"voice-duplicate", "Per cent of them that come twice.", "percent", "0"},
    {"voice-speakers", "So many who speak without end, for load tests.", "count", "0"},
    {"voice-frequencies", "On so many frequencies, from 124.000 MHz on.", "count", "1"},
    {"plugin", "nng address of X-Plane's plugin.", "url", "ipc:///tmp//tarvoclient.ipc"},
    {"token-life", "Seconds that an access token lives.", "seconds", "3600"},
    {"refresh-life", "Seconds that a refresh token lives.", "seconds", "2592000"},
    {"fsd-token-life", "Seconds that an FSD token lives.", "seconds", "120"},
    {"ping", "Seconds between pings, 0 for none.", "seconds", "30"},
    {"challenge", "Seconds between challenges, about; 0 for none.", "seconds", "60"},
    {"range", "Nautical miles that positions and radio reach.", "miles", "60"},
    {"fast-range", "Nautical miles within which pilots are asked for fast positions.", "miles", "5"},
    {"script", "Script to play, one event a line.", "file", ""},
    {"replay", "Network log of a client to replay; nobody else is there.", "file", ""},
    {"speed", "How many times as fast the log is replayed as it was recorded.", "factor", "1"},
    {"pilots", "A crowd of so many pilots, for load tests.", "count", "0"},
    {"rate", "Fast positions per second of each pilot of the crowd.", "hertz", "5"},
    {"broadcast", "Seconds between the residents' broadcasts, 0 for none.", "seconds", "300"},
    {"flight-time", "Seconds into the flight at which it begins.", "seconds", "0"},
};

/// Reads values and remembers the first that is no good.
class Values
{
public:
    explicit Values(const QCommandLineParser &parser) : m_parser(parser) {}

    QString text(const char *name) const { return m_parser.value(QLatin1StringView(name)); }
    double number(const char *name, double lowest, double highest)
    {
        bool ok = false;
        const double value = text(name).toDouble(&ok);
        if (ok && value >= lowest && value <= highest)
            return value;
        complain(name);
        return lowest;
    }
    int whole(const char *name, int lowest, int highest)
    {
        bool ok = false;
        const int value = text(name).toInt(&ok);
        if (ok && value >= lowest && value <= highest)
            return value;
        complain(name);
        return lowest;
    }
    QHostAddress address(const char *name)
    {
        const QHostAddress address(text(name));
        if (!text(name).isEmpty() && !address.isLoopback())
            complain(name);
        return address;
    }
    QString error() const { return m_error; }

private:
    void complain(const char *name)
    {
        if (m_error.isEmpty())
            m_error = QStringLiteral("--%1: \"%2\" is no good").arg(QLatin1StringView(name), text(name));
    }

    const QCommandLineParser &m_parser;
    QString m_error;
};

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        QStringLiteral("The practice network: an account service, an FSD server, a voice server and an X-Plane to "
                       "fly, for one pilot on one machine."));
    parser.addHelpOption();
    parser.addVersionOption();
    for (const ValueOption &option : valueOptions)
        parser.addOption({QLatin1StringView(option.name), QLatin1StringView(option.description),
                          QLatin1StringView(option.valueName), QLatin1StringView(option.defaultValue)});
    parser.addOption({QStringLiteral("no-simulator"), QStringLiteral("Leave X-Plane's addresses alone.")});
    parser.addOption({QStringLiteral("no-residents"), QStringLiteral("Nobody but the clients that connect.")});
    parser.addOption({QStringLiteral("step"), QStringLiteral("Replay by the verb \"step\" alone.")});
    parser.addOption({QStringLiteral("quiet"), QStringLiteral("Say what is served, but not what happens.")});
}

Options fill(const QCommandLineParser &parser, Values &values)
{
    constexpr int longest = 1'000'000'000;
    Options options;
    options.script = values.text("script");
    options.replay = values.text("replay");
    PracticeSettings &network = options.network;
    network.address = values.address("address");
    network.secondAddress = values.address("second-address");
    network.httpPort = static_cast<quint16>(values.whole("http-port", 0, 65535));
    network.fsdPort = static_cast<quint16>(values.whole("fsd-port", 0, 65535));
    network.xplanePort = static_cast<quint16>(values.whole("xplane-port", 0, 65535));
    network.voiceTcpPort = static_cast<quint16>(values.whole("voice-port", 0, 65535));
    network.voiceUdpPort = static_cast<quint16>(values.whole("voice-udp-port", 0, 65535));
    network.voice.weather.lossPercent = values.number("voice-loss", 0, 100);
    network.voice.weather.jitterMs = values.whole("voice-jitter", 0, 10'000);
    network.voice.weather.duplicatePercent = values.number("voice-duplicate", 0, 100);
    network.voicePeople.speakers = values.whole("voice-speakers", 0, VoicePeopleSettings::mostSpeakers);
    network.voicePeople.frequencies = values.whole("voice-frequencies", 1, VoicePeopleSettings::mostFrequencies);
    network.pluginUrl = values.text("plugin");
    network.simulator = !parser.isSet(QStringLiteral("no-simulator"));
    network.fsd.pingIntervalMs = values.whole("ping", 0, 86400) * 1000;
    network.fsd.challengeIntervalMs = values.whole("challenge", 0, 86400) * 1000;
    network.fsd.relayRangeNm = values.number("range", 0, 10800);
    network.fsd.fastRangeNm = values.number("fast-range", 0, 10800);
    network.residents.present = !parser.isSet(QStringLiteral("no-residents")) &&
                                options.script.isEmpty() && // which brings its own people
                                options.replay.isEmpty();
    network.replay.speed = values.number("speed", 0.01, 10'000);
    network.replay.stepwise = parser.isSet(QStringLiteral("step"));
    network.voicePeople.present = network.residents.present;
    network.residents.broadcastIntervalMs = values.whole("broadcast", 0, 86400) * 1000;
    network.crowd.pilots = values.whole("pilots", 0, CrowdSettings::mostPilots);
    network.crowd.rateHz = values.number("rate", 0.01, 50);
    options.accessLife = values.whole("token-life", 0, longest);
    options.refreshLife = values.whole("refresh-life", 0, longest);
    options.fsdLife = values.whole("fsd-token-life", 0, longest);
    options.flightTime = values.number("flight-time", 0, longest);
    options.quiet = parser.isSet(QStringLiteral("quiet"));
    return options;
}
} // namespace

std::optional<Options> readOptions(const QStringList &arguments, QString *error)
{
    QCommandLineParser parser;
    describe(parser);
    Values values(parser);
    const bool parsed = parser.parse(arguments);
    if (!parsed || !parser.positionalArguments().isEmpty()) {
        *error = parsed ? QStringLiteral("Unexpected argument %1").arg(parser.positionalArguments().constFirst())
                        : parser.errorText();
        return std::nullopt;
    }
    Options options;
    if (parser.isSet(QStringLiteral("help"))) {
        options.information = parser.helpText();
        return options;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        options.information = QStringLiteral("tarvo-practice 1.0\n");
        return options;
    }
    options = fill(parser, values);
    *error = values.error();
    if (!options.replay.isEmpty() && !options.script.isEmpty()) // it plays with an FSD server that isn't there
        *error = QStringLiteral("--script and --replay can't be had together");
    return error->isEmpty() ? std::optional(options) : std::nullopt;
}

} // namespace tarvo::practice
