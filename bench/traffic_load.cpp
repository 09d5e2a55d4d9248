// The whole client under the traffic of a crowd. The client runs in a process of its own; this one plays the FSD server
// with everybody behind it, X-Plane, and its plugin, so that one clock times each line on its way to its messages. A
// bare program that reads the same lines and sends as many messages is measured in the same run: a share of a core says
// more of the machine than of the client. Tells each figure against its budget (Budgets.h), and gives 1 when one is
// not kept. With --busy each size of the crowd is run four times: quiet, and with as many busy loops as there are
// cores; each with the batch scheduling of nng's threads, which the client has, and without.
//
// traffic_load [--pilots 500,2000] [--rate 5] [--seconds 120] [--busy]; ten seconds give a first impression
#include "traffic/BareProgram.h"
#include "traffic/Budgets.h"
#include "traffic/BusyLoops.h"
#include "traffic/ClientUnderTest.h"
#include "traffic/LoadRun.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <thread>
#include <vector>

using namespace tarvo::bench;

namespace bench = tarvo::bench;

namespace {

constexpr double budgetGrowth = 1;

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
    parser.addOption({QStringLiteral("busy"),
                      QStringLiteral("The same also with every core busy, and each without nng's batch scheduling.")});
    parser.process(application);
    Options options;
    for (const QString &number : parser.value(QStringLiteral("pilots")).split(QLatin1Char(',')))
        options.pilots.push_back(qBound(1, number.toInt(), 3500));
    options.rate = qBound(0.1, parser.value(QStringLiteral("rate")).toDouble(), 10.0);
    options.seconds = qBound(1.0, parser.value(QStringLiteral("seconds")).toDouble(), 600.0);
    options.busy = parser.isSet(QStringLiteral("busy"));
    return options;
}

struct Run
{
    Load load;
    int busyLoops = 0;
    LoadResult result;
    std::vector<Judged> figures;

    bool isGood() const { return bench::isGood(result, figures); }
};

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
    std::printf("  bare program          %.2f %% of one core\n", result.bareShare * 100);
    std::printf("  cost of a line        %.1f us, %.1f us by the traffic alone\n", result.cpuPerLineUs(),
                result.trafficCpuPerLineUs());
    std::printf("  line to message       median %.3f ms, 99 %% within %.3f ms, all within %.1f ms\n", tally.medianMs,
                tally.percentile99Ms, tally.maximumMs);
    std::printf("  resident memory       %.1f MiB alone, %.1f MiB with the crowd, %.1f MiB at the end\n",
                result.residentStartMiB, result.residentCrowdMiB, result.residentEndMiB);
}

void printName(const Run &run)
{
    std::printf("%d pilots at %.1f Hz, ", run.load.pilots, run.load.rate);
    if (run.busyLoops > 0)
        std::printf("%d busy loops beside", run.busyLoops);
    else
        std::printf("quiet");
    std::printf(", nng's threads %s\n", run.load.ordinaryThreads ? "ordinary" : "batch");
}

void printBudgets(const Run &run)
{
    for (const Judged &figure : run.figures) {
        std::printf("  %10.2f %-30s", figure.value, figure.what);
        if (figure.budget)
            std::printf("  of %.2f: ratio %.2f%s", *figure.budget, figure.share(), figure.isKept() ? "" : ", OVER");
        std::printf("\n");
    }
}

Run measured(const Load &load, int busyLoops)
{
    Run run{.load = load, .busyLoops = busyLoops, .result = {}, .figures = {}};
    const BusyLoops loops(busyLoops);
    run.result = runLoad(load);
    run.figures = judge(load, run.result, busyLoops > 0);
    printName(run);
    if (run.result.failure.isEmpty())
        printFigures(run.result);
    else
        std::printf("  failed: %s\n", qPrintable(run.result.failure));
    printBudgets(run);
    std::fflush(stdout);
    return run;
}

/// The first one is what the client is, on a quiet machine.
std::vector<Run> runsOf(Load load, bool busy)
{
    std::vector<Run> runs;
    const int cores = static_cast<int>(std::thread::hardware_concurrency());
    for (const int busyLoops : busy ? std::vector<int>{0, cores} : std::vector<int>{0}) {
        load.ordinaryThreads = false;
        runs.push_back(measured(load, busyLoops));
        load.ordinaryThreads = true;
        if (busy)
            runs.push_back(measured(load, busyLoops));
    }
    return runs;
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
    return ratio <= budgetGrowth;
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
    std::vector<Run> all;
    std::vector<LoadResult> quiet;
    for (const int pilots : options.pilots) {
        const Load load{.pilots = pilots, .rate = options.rate, .seconds = options.seconds};
        const std::vector<Run> runs = runsOf(load, options.busy);
        quiet.push_back(runs.front().result);
        all.insert(all.end(), runs.begin(), runs.end());
    }
    std::printf("\nAgainst the budgets\n");
    bool good = std::ranges::all_of(all, &Run::isGood);
    for (const Run &run : all) {
        printName(run);
        printBudgets(run);
    }
    for (size_t i = 1; i < quiet.size(); ++i)
        good = printRatio(quiet[0], options.pilots[0], quiet[i], options.pilots[i]) && good;
    std::printf("%s\n", good ? "all budgets kept" : "NOT all budgets kept");
    return good ? 0 : 1;
}
