// What the pages cost while the practice flight is on: percent of a core and frames, page by page, beside an empty
// Quick window of the same size in the same run. A display without a GPU, so that Mesa paints with the processor; what
// the client lets paint then is said, and can be forced. The client runs in a process of its own, with its windows and
// everything behind them; this one plays the network, X-Plane and one who speaks. Gives 1 when a goal is not met.
//
// page_cost [--seconds 15] [--paint auto|gl|software] [--only ROW]     seconds: of each row
#include "pages/Role.h"
#include "pages/VirtualDisplay.h"
#include "pages/WindowsUnderTest.h"
#include "practice/PracticeNetwork.h"
#include "support/SoundServer.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QQuickStyle>

#include <chrono>
#include <cstdio>
#include <optional>

using namespace tarvo;

namespace {

constexpr int settleMs = 3'000;
constexpr int greetingMs = 8'000; ///< the tower has greeted: each message shows a sign that moves
constexpr int emptyFramesPerSecond = 5;
constexpr int speakersKHz = 124'000;
constexpr auto com1 = "sim/cockpit2/radios/actuators/com1_frequency_hz_833";
constexpr auto moment = "crosswind"; ///< climbs and turns: everything moves

/// The rows follow each other in one run of the client.
struct Row
{
    const char *name;
    const char *questions;           ///< what the client is asked before, one after the other
    std::optional<double> goal = {}; ///< percent of a core
    bool paused = false;             ///< the flight
};

constexpr Row rows[] = {
    {"overview, flying", "show dashboard", 4},
    {"overview, paused", "show dashboard", {}, true},
    {"simulator, flying", "show simulator", 8},
    {"simulator, paused", "show simulator", {}, true},
    {"simulator, minimised", "minimise", 0.2},
    {"messages", "restore;show messages", 0.5},
    {"server", "show server", 0.5},
    {"settings", "show settings"},
    {"voice, silent", "show voice"},
    {"voice, one speaker", "voice", 8},
    {"the same minimised", "minimise"},
};

struct Measured
{
    double percent = 0; ///< of a core
    double framesPerSecond = 0;

    double msAFrame() const { return framesPerSecond > 0 ? percent * 10 / framesPerSecond : 0; }
};

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Measured measure(bench::Role &role, double seconds)
{
    bench::pass(settleMs);
    const int framesBefore = role.ask("frames").toInt();
    const double cpuBefore = role.cpuSeconds();
    const double start = now();
    bench::pass(static_cast<int>(seconds * 1000));
    const double cpu = role.cpuSeconds() - cpuBefore;
    const double passed = now() - start;
    return {.percent = 100 * cpu / passed, .framesPerSecond = (role.ask("frames").toInt() - framesBefore) / passed};
}

void tellHead()
{
    std::printf("%-28s %9s %9s %9s %22s %6s %6s\n", "", "% of core", "frames/s", "ms/frame", "of empty at that rate",
                "goal", "ratio");
}

/// False when its goal is not met. `empty`: the window that paints nothing, over and over again.
bool tell(const char *name, const Measured &row, const Measured &empty, std::optional<double> goal = {})
{
    std::printf("%-28s %9.2f %9.2f", name, row.percent, row.framesPerSecond);
    if (row.framesPerSecond > 0 && empty.percent > 0)
        std::printf(" %9.1f %22.2f", row.msAFrame(), row.msAFrame() / empty.msAFrame());
    else
        std::printf(" %9s %22s", "-", "-");
    if (goal)
        std::printf(" %6.1f %6.2f", *goal, row.percent / *goal);
    std::printf("\n");
    std::fflush(stdout);
    return !goal || row.percent <= *goal;
}

practice::PracticeSettings settings()
{
    practice::PracticeSettings settings = practice::PracticeSettings::ephemeral();
    settings.residents.present = true;
    settings.voicePeople.speakers = 1;
    return settings;
}

bench::PagesArguments argumentsOf(practice::PracticeNetwork &network)
{
    return {.apiBaseUrl = network.account().baseUrl(),
            .fsdPort = network.fsd().port(),
            .xplanePort = network.xplane().udpPort(),
            .voiceTcpPort = network.voice().tcpPort(),
            .voiceUdpPort = network.voice().udpPort(),
            .pluginUrl = network.pluginUrl()};
}

Measured measureEmpty(double seconds)
{
    bench::Role window({QStringLiteral("empty")});
    window.ask("paint 0");
    const Measured still = measure(window, seconds);
    window.ask("paint " + QByteArray::number(emptyFramesPerSecond));
    const Measured painted = measure(window, seconds);
    tell("empty window, still", still, painted);
    tell("empty window, painted", painted, painted);
    return painted;
}

/// Nothing when the client fails; else whether the goal is met.
std::optional<bool> measureRow(const Row &row, bench::Role &client, practice::PracticeNetwork &network,
                               const Measured &empty, double seconds)
{
    practice::XPlaneStandIn &xplane = network.xplane();
    xplane.setPaused(false);
    xplane.setFlightTime(xplane.flight().startOf(QLatin1StringView(moment)));
    xplane.setValue(QLatin1StringView(com1), speakersKHz);
    const QList<QByteArray> questions = QByteArray(row.questions).split(';');
    for (const QByteArray &question : questions) {
        if (client.ask(question).isEmpty()) {
            std::printf("%-28s the client fails\n", row.name);
            return std::nullopt;
        }
    }
    if (row.paused)
        bench::pass(settleMs);
    xplane.setPaused(row.paused);
    return tell(row.name, measure(client, seconds), empty, row.goal);
}

int measureAll(double seconds, const QString &only)
{
    bench::VirtualDisplay display;
    test::SoundServer sound;
    practice::PracticeNetwork network(settings());
    if (!display.start() || !sound.start() || !network.start()) {
        std::printf("the servers don't start\n");
        return 1;
    }
    network.xplane().setFlightTime(network.xplane().flight().startOf(QLatin1StringView(moment)));
    tellHead();
    const Measured empty = measureEmpty(seconds);
    bench::Role client(QStringList{QStringLiteral("client")} + argumentsOf(network).toWords());
    const QByteArray painter = client.ask("begin");
    std::printf("the client, painted by %s\n", painter.constData());
    bench::pass(greetingMs);
    bool good = !painter.isEmpty();
    for (const Row &row : rows) {
        if (painter.isEmpty() || !QLatin1StringView(row.name).contains(only))
            continue;
        const std::optional<bool> kept = measureRow(row, client, network, empty, seconds);
        good = kept.value_or(false) && good;
        if (!kept)
            break;
    }
    QFile load(QStringLiteral("/proc/loadavg"));
    if (load.open(QIODevice::ReadOnly))
        std::printf("load of the machine at the end: %s", load.readAll().constData());
    return good ? 0 : 1;
}

/// For the processes to come.
void choosePainter(const QString &name)
{
    qputenv("LIBGL_ALWAYS_SOFTWARE", "1");
    qunsetenv("QT_QUICK_BACKEND");
    qunsetenv("QSG_RHI_BACKEND");
    if (name == QLatin1StringView("software"))
        qputenv("QT_QUICK_BACKEND", "software");
    else if (name == QLatin1StringView("gl"))
        qputenv("QSG_RHI_BACKEND", "opengl");
}

int runRole(int argc, char **argv)
{
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    const QApplication app(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    return words.at(1) == QLatin1StringView("empty") ? bench::runEmptyWindow()
                                                     : bench::runPages(bench::PagesArguments::fromWords(words.mid(2)));
}

} // namespace

int main(int argc, char **argv)
{
    const QByteArray role = argc > 1 ? argv[1] : "";
    if (role == "empty" || role == "client")
        return runRole(argc, argv);
    const QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption seconds(QStringLiteral("seconds"), {}, QStringLiteral("N"), QStringLiteral("15"));
    const QCommandLineOption paint(QStringLiteral("paint"), {}, QStringLiteral("what"), QStringLiteral("auto"));
    const QCommandLineOption only(QStringLiteral("only"), {}, QStringLiteral("row"));
    parser.addOptions({seconds, paint, only});
    parser.process(app);
    choosePainter(parser.value(paint));
    return measureAll(parser.value(seconds).toDouble(), parser.value(only));
}
