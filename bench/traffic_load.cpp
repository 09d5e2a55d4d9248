// The whole client under the traffic of a crowd. The client runs in a process of its own; this one plays the FSD server
// with everybody behind it, X-Plane, and its plugin, so that one clock times each line on its way to its messages.
// Budget: 500 pilots at 5 Hz under 10 % of one core, 99 % within 2 ms; the cost grows no faster than the traffic. Tells
// what is over budget, lost or wrong, and gives 1 then.
//
// traffic_load [--pilots 500,2000] [--rate 5] [--seconds 120]; ten seconds give a first impression
#include "traffic/ClientUnderTest.h"
#include "traffic/LoadRun.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <vector>

using namespace tarvo::bench;

namespace {

constexpr double budgetLinesPerSecond = 2500; ///< 500 pilots at 5 Hz
constexpr double budgetCpuShare = 0.10;
constexpr double budgetPercentile99Ms = 2;
constexpr double budgetRatio = 1;

struct Options
{
    std::vector<int> pilots;
    double rate = 0;
    double seconds = 0;
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
    parser.process(application);
    Options options;
    for (const QString &number : parser.value(QStringLiteral("pilots")).split(QLatin1Char(',')))
        options.pilots.push_back(qBound(1, number.toInt(), 3500));
    options.rate = qBound(0.1, parser.value(QStringLiteral("rate")).toDouble(), 10.0);
    options.seconds = qBound(1.0, parser.value(QStringLiteral("seconds")).toDouble(), 600.0);
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
    std::printf("  messages received     %llu; %llu missing, %llu wrong%s%s\n",
                static_cast<unsigned long long>(tally.messages), static_cast<unsigned long long>(tally.missing),
                static_cast<unsigned long long>(tally.wrong), tally.wrong > 0 ? ", first: " : "",
                qPrintable(tally.firstWrong));
    std::printf("  share of one core     %.2f %%, of it %.2f %% without any traffic\n", result.cpuShare * 100,
                result.idleShare * 100);
    std::printf("  cost of a line        %.1f us, %.1f us by the traffic alone\n", result.cpuPerLineUs(),
                result.trafficCpuPerLineUs());
    std::printf("  line to message       median %.3f ms, 99 %% within %.3f ms, all within %.1f ms\n", tally.medianMs,
                tally.percentile99Ms, tally.maximumMs);
    std::printf("  resident memory       %.1f MiB alone, %.1f MiB with the crowd, %.1f MiB at the end\n",
                result.residentStartMiB, result.residentCrowdMiB, result.residentEndMiB);
}

/// False when something was lost, wrong or over budget.
bool print(const Load &load, const LoadResult &result)
{
    std::printf("%d pilots at %.1f Hz\n", load.pilots, load.rate);
    if (!result.failure.isEmpty()) {
        std::printf("  failed: %s\n", qPrintable(result.failure));
        return false;
    }
    printFigures(result);
    const Tally &tally = result.tally;
    bool good = tally.messages > 0 && tally.missing == 0 && tally.wrong == 0;
    if (load.pilots * load.rate <= budgetLinesPerSecond) {
        good = keeps(budgetCpuShare, result.cpuShare, "share of one core") && good;
        good = keeps(budgetPercentile99Ms, tally.percentile99Ms, "line to message, 99 %") && good;
    }
    std::fflush(stdout);
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

    const Options options = readOptions(application);
    std::vector<LoadResult> results;
    bool good = true;
    for (const int pilots : options.pilots) {
        const Load load{.pilots = pilots, .rate = options.rate, .seconds = options.seconds};
        results.push_back(runLoad(load));
        good = print(load, results.back()) && good;
    }
    for (size_t i = 1; i < results.size(); ++i)
        good = printRatio(results[0], options.pilots[0], results[i], options.pilots[i]) && good;
    return good ? 0 : 1;
}
