// The whole client under the traffic of a crowd. The client runs in a process of its own; this one plays the FSD server
// with everybody behind it, X-Plane, and its plugin, so that one clock times each line on its way to its messages. A
// bare program that reads the same lines and sends as many messages is measured in the same run: a share of a core says
// more of the machine than of the client. Budget, quiet: 1.6 times the bare program, 99 % within 2 ms, nothing lost.
// With --busy, which runs the same again with as many busy loops as there are cores, with and without the batch
// scheduling of nng's threads: nothing lost but positions that a newer one has overtaken, and 99 % within 5 ms with up
// to 500 pilots. Tells what is over budget, lost or wrong, and gives 1 then.
//
// traffic_load [--pilots 500,2000] [--rate 5] [--seconds 120] [--busy]; ten seconds give a first impression
#include "traffic/BareProgram.h"
#include "traffic/BusyLoops.h"
#include "traffic/ClientUnderTest.h"
#include "traffic/LoadRun.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <thread>
#include <vector>

using namespace tarvo::bench;

namespace {

constexpr double budgetBareRatio = 1.6;
constexpr double budgetPercentile99Ms = 2;
constexpr double busyLinesPerSecond = 2500; ///< 500 pilots at 5 Hz
constexpr double budgetBusyPercentile99Ms = 5;
constexpr double budgetRatio = 1;

struct Options
{
    std::vector<int> pilots;
    double rate = 0;
    double seconds = 0;
    bool busy = false;
};

Options readOptions(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({QStringLiteral("pilots"), QStringLiteral("Sizes of the crowd, one run each."),
                      QStringLiteral("numbers"), QStringLiteral("500,2000")});
    parser.addOption({QStringLiteral("rate"), QStringLiteral("Fast reports of each pilot in a second."),
                      QStringLiteral("Hz"), QStringLiteral("5")});
    parser.addOption({QStringLiteral("seconds"), QStringLiteral("How long each run measures."),
                      QStringLiteral("seconds"), QStringLiteral("120")});
    parser.addOption({QStringLiteral("busy"), QStringLiteral("The same again with every core busy.")});
    parser.process(application);
    Options options;
    for (const QString &number : parser.value(QStringLiteral("pilots")).split(QLatin1Char(',')))
        options.pilots.push_back(qBound(1, number.toInt(), 3500));
    options.rate = qBound(0.1, parser.value(QStringLiteral("rate")).toDouble(), 10.0);
    options.seconds = qBound(1.0, parser.value(QStringLiteral("seconds")).toDouble(), 600.0);
    options.busy = parser.isSet(QStringLiteral("busy"));
    return options;
}

/// False for what is over budget, which it says.
bool keeps(double budget, double value, const char *what)
{
    if (value <= budget)
        return true;
    std::printf("  over budget           %s\n", what);
    return false;
}

void printFigures(const LoadResult &result)
{
    const Tally &tally = result.tally;
    std::printf("  lines sent            %llu in %.1f s (%.0f a second)\n",
                static_cast<unsigned long long>(result.lines), result.seconds,
                static_cast<double>(result.lines) / result.seconds);
    std::printf("  messages received     %llu; %llu overtaken, %llu missing, %llu wrong%s%s\n",
                static_cast<unsigned long long>(tally.messages), static_cast<unsigned long long>(tally.overtaken),
                static_cast<unsigned long long>(tally.missing), static_cast<unsigned long long>(tally.wrong),
                tally.wrong > 0 ? ", first: " : "", qPrintable(tally.firstWrong));
    std::printf("  share of one core     %.2f %%, of it %.2f %% without any traffic\n", result.cpuShare * 100,
                result.idleShare * 100);
    std::printf("  bare program          %.2f %% of one core; the client is %.2f times that\n", result.bareShare * 100,
                result.bareRatio());
    std::printf("  cost of a line        %.1f us, %.1f us by the traffic alone\n", result.cpuPerLineUs(),
                result.trafficCpuPerLineUs());
    std::printf("  line to message       median %.3f ms, 99 %% within %.3f ms, all within %.1f ms\n", tally.medianMs,
                tally.percentile99Ms, tally.maximumMs);
    std::printf("  resident memory       %.1f MiB alone, %.1f MiB with the crowd, %.1f MiB at the end\n",
                result.residentStartMiB, result.residentCrowdMiB, result.residentEndMiB);
}

/// False when something was lost, wrong or over budget.
bool print(const Load &load, const LoadResult &result, int busyLoops)
{
    std::printf("%d pilots at %.1f Hz", load.pilots, load.rate);
    if (busyLoops > 0)
        std::printf(", %d busy loops beside, nng's threads %s", busyLoops, load.ordinaryThreads ? "ordinary" : "batch");
    std::printf("\n");
    if (!result.failure.isEmpty()) {
        std::printf("  failed: %s\n", qPrintable(result.failure));
        return false;
    }
    printFigures(result);
    const Tally &tally = result.tally;
    bool good = tally.messages > 0 && tally.missing == 0 && tally.wrong == 0;
    if (busyLoops == 0) {
        good = keeps(0, static_cast<double>(tally.overtaken), "overtaken positions") && good;
        good = keeps(budgetBareRatio, result.bareRatio(), "against the bare program") && good;
        good = keeps(budgetPercentile99Ms, tally.percentile99Ms, "line to message, 99 %") && good;
    } else if (load.pilots * load.rate <= busyLinesPerSecond && !load.ordinaryThreads) {
        good = keeps(budgetBusyPercentile99Ms, tally.percentile99Ms, "line to message, 99 %") && good;
    }
    std::fflush(stdout);
    return good;
}

/// The same with every core busy, with nng's threads as the client has them and as ordinary ones. What these do is told
/// only, and breaks no budget.
bool runBusy(Load load)
{
    const int cores = static_cast<int>(std::thread::hardware_concurrency());
    const BusyLoops loops(cores);
    const bool good = print(load, runLoad(load), cores);
    load.ordinaryThreads = true;
    print(load, runLoad(load), cores);
    return good;
}

/// False when the cost of a line by the traffic alone grows with the traffic. The whole cost falls by itself: what the
/// client does without any traffic is shared by more lines.
bool printRatio(const LoadResult &small, int smallPilots, const LoadResult &large, int largePilots)
{
    if (!small.failure.isEmpty() || !large.failure.isEmpty() || small.trafficCpuPerLineUs() <= 0)
        return false;
    const double ratio = large.trafficCpuPerLineUs() / small.trafficCpuPerLineUs();
    std::printf("cost of a line with %d pilots against %d: ratio %.2f by the traffic alone, %.2f with what the client "
                "does anyway (above 1: it grows faster than the traffic)\n",
                largePilots, smallPilots, ratio, large.cpuPerLineUs() / small.cpuPerLineUs());
    return keeps(budgetRatio, ratio, "growth");
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.value(1) == QLatin1StringView("client"))
        return runClient(ClientArguments::fromWords(words.mid(2)));
    if (words.value(1) == QLatin1StringView("bare"))
        return runBareProgram(ClientArguments::fromWords(words.mid(2)));
    if (words.value(1) == QLatin1StringView("spin"))
        runBusyLoop();

    const Options options = readOptions(application);
    std::vector<LoadResult> results;
    bool good = true;
    for (const int pilots : options.pilots) {
        const Load load{.pilots = pilots, .rate = options.rate, .seconds = options.seconds};
        results.push_back(runLoad(load));
        good = print(load, results.back(), 0) && good;
        good = (!options.busy || runBusy(load)) && good;
    }
    for (size_t i = 1; i < results.size(); ++i)
        good = printRatio(results[0], options.pilots[0], results[i], options.pilots[i]) && good;
    return good ? 0 : 1;
}
